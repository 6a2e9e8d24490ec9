#ifndef CORE_FORMAT_NXFMT_H
#define CORE_FORMAT_NXFMT_H

#include <fmt/format.h>

#include <string_view>

#include "core/format/nxPrintedText.h"

/// @file
/// Opt-in: the library's values in {fmt}. Needs {fmt} in the including program only; the library does not use it. A
/// value is formatted as a log record prints it and takes what a text takes: fill, width, alignment.
/// @code
/// fmt::print("{:>10} {}\n", price, error);
/// @endcode

// The reference generator cannot tell whose specialization this is.
/// @cond
/// Formats a value as a log record prints it; takes what a text takes: fill, width, alignment.
template <nxPrintable Value>
struct fmt::formatter<Value, char> : fmt::formatter<std::string_view, char>
{
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
