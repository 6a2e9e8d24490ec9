// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TEXT_H
#define NXTICK_TEXT_H

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/numeric/nxDecimal.h"
#include "core/text/nxPrintableText.h"

namespace nxtick
{
/// The number with all its decimals.
std::string DecimalText(const nxDecimal& value, char point = '.');

/// 1234567 as "1,234,567".
std::string CountText(std::uint64_t count);

/// The text without blanks and tabs around it.
inline std::string_view WithoutBlanks(std::string_view text)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

inline bool IsDigit(char c) { return '0' <= c && c <= '9'; }

/// Text of unknown origin for a message: in quotes, cut to 40 bytes, safe to show. Characters that look like a blank or
/// like nothing are shown as \xNN too, because a no-break space is often the reason why a number cannot be read.
std::string Quoted(std::string_view text);

/// " Did you mean A, B or C?" with the candidates nearest to @p wrong, three at most; empty when none is near.
std::string Suggestion(const std::string& wrong, const std::set<std::string>& candidates);

/// Lines up columns: the first row is the heading, every column as wide as its widest cell, two blanks between.
/// Columns named in @p rightAligned (from 0) are aligned on the right, those in @p onPoint on the decimal point.
/// @return one line for each row, without line ends.
std::vector<std::string> ColumnLines(const std::vector<std::vector<std::string>>& rows,
                                     const std::set<std::size_t>& rightAligned, const std::set<std::size_t>& onPoint);
/// The same as one text.
std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::set<std::size_t>& rightAligned,
                    const std::set<std::size_t>& onPoint);

/// The text in lines of at most 78 characters, broken between words; nothing for an empty text.
std::string Wrapped(const std::string& text);
}  // namespace nxtick

#endif
