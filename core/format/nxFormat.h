// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_FORMAT_NXFORMAT_H
#define CORE_FORMAT_NXFORMAT_H

#include <version>

/// @file
/// Opt-in: the library's values in std::format. The header is empty if the standard library does not have it. As in
/// nxFmt.h, all values take fill, width and alignment; only names, flags and texts take a precision.
/// @code
/// std::format("{:>10} {}", price, error);
/// @endcode

#ifdef __cpp_lib_format

    #include <format>
    #include <string_view>

    #include "core/format/nxPrintedText.h"

/// Formats a value as a log record prints it; takes fill, width and alignment as a text does.
/// Names, flags and texts take a precision too; for a number, a date or a time it is an error.
template <nxPrintable Value>
struct std::formatter<Value, char> : std::formatter<std::string_view, char>
{
    /// Reads the format.
    template <class Context>
    constexpr auto parse(Context& context)
    {
        const auto begin = context.begin();
        const auto end = std::formatter<std::string_view, char>::parse(context);
        if (!nxCuttable<Value> && nxHasPrecision(std::string_view(begin, end)))
            throw std::format_error(nxPrecisionRefused);
        return end;
    }
    /// Writes the text of @p value.
    template <class Context>
    auto format(const Value& value, Context& context) const
    {
        const auto& text = nxPrintedText(value);
        return std::formatter<std::string_view, char>::format(std::string_view(text), context);
    }
};

#endif

#endif
