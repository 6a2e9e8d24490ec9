// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_INTERNAL_NXTIMETEXT_H
#define CORE_TIME_INTERNAL_NXTIMETEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/text/inline/nxDigits.h"

/// The parts that the texts of times of day, spans and date-times have in common. Threads: no state.
class nxTimeText
{
public:
    nxTimeText() = delete;

    /// Reads a text that must consist of digits, 1 to 9 of them.
    static bool ReadDigits(std::string_view digits, unsigned& value)
    {
        std::uint64_t number = 0;
        if (!nxDigits::Parse(digits.data(), digits.data() + digits.size(), number))
            return false;
        value = static_cast<unsigned>(number);
        return true;
    }

    /// Reads ".5" as 500,000,000 nanoseconds and an empty text as 0. There are at most nine digits.
    static bool ReadFraction(std::string_view text, unsigned& nanoseconds)
    {
        nanoseconds = 0;
        if (text.empty())
            return true;
        if (text.front() != '.' || text.size() > 10 || !ReadDigits(text.substr(1), nanoseconds))
            return false;
        for (std::size_t digits = text.size() - 1; digits < 9; ++digits)
            nanoseconds *= 10;
        return true;
    }
};

#endif
