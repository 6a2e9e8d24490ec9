// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INTERNAL_NXCSVFIELDTEXT_H
#define CORE_TEXT_INTERNAL_NXCSVFIELDTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/text/nxCSVDialect.h"

/// The rules for the fields of a row that holds quotes or blanks.
class nxCSVFieldText
{
public:
    explicit nxCSVFieldText(const nxCSVDialect& dialect) : _dialect(dialect) {}

    std::string_view GetTrimmed(std::string_view text) const
    {
        text.remove_prefix(_GetBlanks(text));
        while (!text.empty() && _dialect.IsBlank(text.back()))
            text.remove_suffix(1);
        return text;
    }

    bool IsQuoted(std::string_view text) const
    {
        return !text.empty() && text.front() == _dialect.quote && _dialect.quote != '\0';
    }

    /// The raw field with which @p rest begins. A quoted one ends at the first separator after its closing quote.
    std::string_view GetFirst(std::string_view rest) const
    {
        std::size_t from = _dialect.trimBlanks ? _GetBlanks(rest) : 0;
        if (IsQuoted(rest.substr(from)))
        {
            for (from = rest.find(_dialect.quote, from + 1); from != std::string_view::npos;
                 from = rest.find(_dialect.quote, from + 2))
                if (from + 1 == rest.size() || rest[from + 1] != _dialect.quote)
                    break;
            if (from == std::string_view::npos)
                return rest;
        }
        return rest.substr(0, rest.find(_dialect.separator, from));
    }

    /// Takes the quotes off a field that begins with one. Text after the closing quote is kept as it is.
    std::string GetUnquoted(std::string_view raw) const
    {
        std::string text;
        text.reserve(raw.size());
        bool isInside = true;
        for (std::size_t i = 1; i < raw.size(); ++i)
        {
            if (isInside && raw[i] == _dialect.quote)
            {
                if (i + 1 == raw.size() || raw[i + 1] != _dialect.quote)
                {
                    isInside = false;
                    continue;
                }
                ++i;
            }
            text += raw[i];
        }
        return text;
    }

private:
    std::size_t _GetBlanks(std::string_view text) const
    {
        std::size_t count = 0;
        while (count < text.size() && _dialect.IsBlank(text[count]))
            ++count;
        return count;
    }

    const nxCSVDialect& _dialect;
};

#endif
