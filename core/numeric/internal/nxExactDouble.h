// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXEXACTDOUBLE_H
#define CORE_NUMERIC_INTERNAL_NXEXACTDOUBLE_H

#include <cstddef>

#include "core/enum/nxErrorEnum.h"

/// Doubles of every magnitude as plain decimals, without an exponent and without a locale: each text is read as the
/// nearest double, and a text that is written reads back as the same double.
class nxExactDouble
{
public:
    nxExactDouble() = delete;

    /// The longest text: a sign, "0.", 307 zeros and 17 digits.
    static constexpr std::size_t MaxTextSize = 327;

    /// Reads digits with at most one @p separator before, between or after them. @pre The thread rounds to the nearest.
    /// @return NX_ERR_INVALID_PARAMETER for any other text; NX_ERR_VALUE_OUT_OF_RANGE for a number that is too large, or
    ///         whose digits the nearest double does not keep. @p magnitude is then untouched.
    [[nodiscard]] static nxErrorEnum Read(const char* begin, const char* end, char separator, double& magnitude);

    /// Writes the shortest plain decimal that Read() reads as @p value, after a '-' when it is negative.
    /// @param out has room for MaxTextSize bytes. @return the end of the text.
    static char* Write(char* out, double value);
};

#endif
