// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXBANDRULES_H
#define CORE_PRICE_INTERNAL_NXBANDRULES_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxDecimal.h"

/// What names and bands of an application's own tick tables have to keep. The checks return the fault as a sentence for
/// the user; empty when there is none.
/// - Threads and ownership: functions of their arguments.
class nxBandRules
{
public:
    /// Inclusive upper bounds and increments, ascending.
    using Bands = std::vector<std::pair<nxDecimal, nxDecimal>>;

    nxBandRules() = delete;

    static std::string CheckName(std::string_view name);
    /// Whether a bound or an increment is positive and has few enough digits.
    /// @param what the beginning of the sentence, "increment".
    static std::string CheckNumber(const char* what, const nxDecimal& number);
    /// Whether a band may follow the bands before it.
    static std::string CheckBand(const Bands& before, const nxDecimal& bound, const nxDecimal& increment);

    /// @return whether the bound is that of a table's last band, which has none.
    static bool IsTop(const nxDecimal& bound);
    /// @return the number with all its decimals, or "NULL".
    static std::string GetNumberText(const nxDecimal& number);
    /// @return a number that CheckNumber() accepted, in units of the smallest number that a band may have.
    static nxWide GetUnits(const nxDecimal& number);

private:
    static std::string _CheckStep(const nxDecimal& bound, const nxDecimal& increment);
};

#endif
