// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXVOLUMENUMBER_H
#define CORE_PRICE_INTERNAL_NXVOLUMENUMBER_H

#include <cstddef>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/inline/nxWide.h"

/// A quantity as it is read and written: digits * 10^-places. It holds what no nxDecimal does, a lot of 2^64 - 1 times 2^64.
/// - Threads and ownership: a value that owns nothing.
struct nxVolumeNumber
{
    nxUnsignedWide digits = 0;
    std::size_t places = 0;
    bool isNegative = false;

    /// Reads what nxDecimal reads: a sign, digits with at most one separator among them, of any length.
    /// @return NX_ERR_INVALID_PARAMETER for any other text, NX_ERR_VALUE_OUT_OF_RANGE for digits that 128 bits do not
    ///         hold, zeros at the end of the decimals left out; the number is then undefined.
    nxErrorEnum Read(std::string_view text, char separator);

    /// Writes the number without its sign and without a terminator.
    /// @param out has room for 64 bytes. @pre places is 18 at most; it is 0 when the digits need more than 64 bits.
    /// @return the end of the text.
    char* Write(char* out, char separator) const;

private:
    nxErrorEnum _ReadAny(std::string_view text, char separator);
};

#endif
