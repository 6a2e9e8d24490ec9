// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_JSON_H
#define NXTICK_JSON_H

#include <string>
#include <string_view>

namespace nxtick
{
/// Appends a string of JSON, in quotes. It is always valid: bytes that are not UTF-8 become U+FFFD.
void AppendJson(std::string_view value, std::string& text);
}  // namespace nxtick

#endif
