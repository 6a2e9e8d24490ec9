#ifndef CORE_FORMAT_NXFORMAT_H
#define CORE_FORMAT_NXFORMAT_H

#include <version>

/// @file
/// Opt-in: the library's values in std::format, where the standard library has it; elsewhere the header is empty.
/// @code
/// std::format("{:>10} {}", price, error);
/// @endcode

#ifdef __cpp_lib_format

    #include <format>
    #include <string_view>

    #include "core/format/nxPrintedText.h"

/// Formats a value as a log record prints it; takes what a text takes: fill, width, alignment.
template <nxPrintable Value>
struct std::formatter<Value, char> : std::formatter<std::string_view, char>
{
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
