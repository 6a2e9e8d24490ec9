#ifndef CORE_TEXT_INTERNAL_NXCLOSESTTEXT_H
#define CORE_TEXT_INTERNAL_NXCLOSESTTEXT_H

#include <algorithm>
#include <string>
#include <string_view>

#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/text/nxAlgorithm.h"

/// Finds the text that a mistyped one probably means.
class nxClosestText
{
public:
    nxClosestText() = delete;

    /// @return the first candidate with the smallest distance from @p text, case ignored; empty when none is close. A third
    ///         of the text may differ, two characters in a short one, but never all of it.
    /// @param candidates a range of texts.
    template <class Candidates>
    static std::string Find(std::string_view text, const Candidates& candidates)
    {
        if (text.empty() || text.size() > _longest)
            return {};
        const std::size_t bound = std::min(std::max<std::size_t>(2, text.size() / 3), text.size() - 1);
        std::string closest;
        unsigned long long smallest = bound + 1;
        for (const auto& candidate : candidates)
            if (const auto distance = nxAlgorithm::GetEditDistance(text, candidate, static_cast<unsigned>(bound),
                                                                   nxCaseSensitivityEnum(CASE_INSENSITIVE));
                distance < smallest)
            {
                smallest = distance;
                closest = candidate;
            }
        return closest;
    }

private:
    // The distance takes time in proportion to the square of the length.
    static constexpr std::size_t _longest = 100;
};

#endif
