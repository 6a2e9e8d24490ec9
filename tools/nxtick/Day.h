// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_DAY_H
#define NXTICK_DAY_H

#include <string>
#include <string_view>

namespace nxtick
{
/// @return whether the text is a day that exists, as YYYY-MM-DD. Such texts compare as their days do.
bool IsDay(std::string_view text);

/// @return today by the system clock and the local time zone.
std::string Today();
}  // namespace nxtick

#endif
