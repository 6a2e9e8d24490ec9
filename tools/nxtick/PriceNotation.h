// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICENOTATION_H
#define NXTICK_PRICENOTATION_H

#include <string>
#include <string_view>

#include "CsvDialect.h"
#include "PriceGrid.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/nxPriceConverter.h"

namespace nxtick
{
/// How prices are read and written: as plain decimals, or in the notation that the user names. Ticks and distances are
/// always plain.
class PriceNotation
{
public:
    /// Plain decimals.
    PriceNotation() = default;
    /// @throws Failure when there is no such notation.
    explicit PriceNotation(const std::string& name);

    bool IsPlain() const { return _converter == nullptr; }

    /// Reads a price, blanks around it allowed.
    /// @return null on success, else what is wrong with the text, to follow it in a sentence, as PriceGrid::ReadPrice(). The
    ///         sentence lives as long as the notation.
    const char* Read(const PriceGrid& grid, std::string_view text, nxDecimal& price, const NumberForm& form = {}) const
    {
        return IsPlain() ? grid.ReadPrice(text, price, form) : _ReadNotation(grid, text, price, form.point);
    }

    /// The price with all its digits.
    std::string GetText(const nxDecimal& price, char point = '.') const;

private:
    const char* _ReadNotation(const PriceGrid& grid, std::string_view text, nxDecimal& price, char point) const;

    const nxPriceConverter* _converter = nullptr;  // lives as long as the process
    std::string _malformed;
    std::string _outside;
};
}  // namespace nxtick

#endif
