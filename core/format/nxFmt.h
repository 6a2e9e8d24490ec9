// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_FORMAT_NXFMT_H
#define CORE_FORMAT_NXFMT_H

#include <fmt/format.h>

#include <string_view>

#include "core/format/nxPrintedText.h"

/// @file
/// Opt-in: the library's values in {fmt}. Needs {fmt} in the including program only; the library does not use it. A
/// value is formatted as a log record prints it and takes fill, width and alignment as a text does. Names, flags and
/// texts take a precision too. A truncated number, date or time would be a different one, so for these a precision does not
/// compile, or throws fmt::format_error when the format is known only at run time.
/// @code
/// fmt::print("{:>10} {}\n", price, error);
/// @endcode

// The reference generator cannot attribute this specialization to its template.
/// @cond
/// Formats a value as a log record prints it; takes fill, width and alignment as a text does.
/// Names, flags and texts take a precision too; for a number, a date or a time it is an error.
template <nxPrintable Value>
struct fmt::formatter<Value, char> : fmt::formatter<std::string_view, char>
{
    /// Reads the format.
    template <class Context>
    constexpr auto parse(Context& context)
    {
        const auto begin = context.begin();
        const auto end = fmt::formatter<std::string_view, char>::parse(context);
        if (!nxCuttable<Value> && nxHasPrecision(std::string_view(begin, end)))
            FMT_THROW(fmt::format_error(nxPrecisionRefused));
        return end;
    }
    /// Writes the text of @p value.
    template <class Context>
    auto format(const Value& value, Context& context) const
    {
        const auto& text = nxPrintedText(value);
        return fmt::formatter<std::string_view, char>::format(std::string_view(text), context);
    }
};
/// @endcond

#endif
