// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVDIALECT_H
#define NXTICK_CSVDIALECT_H

#include <string>
#include <string_view>

#include "core/text/nxCSVDialect.h"

namespace nxtick
{
/// How text is written in a field: in quotes if it would read as something else without them.
/// @throws Failure when that needs quotes and the dialect has none.
std::string GetField(std::string_view text, const nxCSVDialect& dialect = {});

/// How numbers are written in a file.
struct NumberForm
{
    char point = '.';
    bool hasExponents = false;  ///< Whether 1.5e3 is a number.
};
}  // namespace nxtick

#endif
