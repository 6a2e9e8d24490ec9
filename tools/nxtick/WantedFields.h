// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_WANTEDFIELDS_H
#define NXTICK_WANTEDFIELDS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text/nxCSVRow.h"

namespace nxtick
{
/// The fields of a row that are wanted, without their quotes.
class WantedFields
{
public:
    /// @param indices from 0.
    explicit WantedFields(std::vector<std::size_t> indices)
        : _indices(std::move(indices)), _texts(_indices.size()), _unquoted(_indices.size())
    {
    }

    /// Takes the texts from a row; those that it does not have stay.
    void Take(const nxCSVRow& row)
    {
        for (std::size_t at = 0; at < _indices.size(); ++at)
            static_cast<void>(row.GetField(_indices[at], _unquoted[at], _texts[at]));
    }

    /// @param at counts the indices that were given. The text is valid until the next row is read.
    std::string_view operator[](std::size_t at) const { return _texts[at]; }

private:
    std::vector<std::size_t> _indices;
    std::vector<std::string_view> _texts;
    std::vector<std::string> _unquoted;  // texts from which quotes had to be removed
};
}  // namespace nxtick

#endif
