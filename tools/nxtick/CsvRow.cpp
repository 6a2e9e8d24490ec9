// SPDX-License-Identifier: Apache-2.0
#include "CsvRow.h"

#include <algorithm>
#include <bit>

#include "ByteMarks.h"

namespace nxtick
{
std::size_t CsvRow::Find(WantedFields& wanted) const
{
    if (hasQuotes)
        return _FindQuoted(wanted);
    const ByteMarks separators(dialect.separator);
    const std::size_t* next = wanted._indices.data();
    const std::size_t* const last = next + wanted._indices.size();
    std::string_view* found = wanted._texts.data();
    std::size_t count = 0;  // of separators
    std::size_t begin = 0;  // of the field after the last one
    for (std::size_t at = 0; at < content.size(); at += 64)
    {
        std::uint64_t marks = separators.Find(content.data() + at, std::min<std::size_t>(64, content.size() - at));
        for (; marks != 0 && next != last; marks &= marks - 1, ++count)
        {
            const std::size_t end = at + static_cast<std::size_t>(std::countr_zero(marks));
            if (count == *next)
            {
                *found++ = content.substr(begin, end - begin);
                ++next;
            }
            begin = end + 1;
        }
        count += ByteMarks::CountBits(marks);
    }
    if (next != last && count == *next)
        *found = content.substr(begin);
    return count + 1;
}

std::size_t CsvRow::_FindQuoted(WantedFields& wanted) const
{
    std::string_view rest = content;
    std::size_t next = 0;  // of the wanted ones
    for (std::size_t index = 0;; ++index)
    {
        const std::string_view raw = _GetFirst(rest);
        if (next < wanted._indices.size() && wanted._indices[next] == index)
        {
            wanted._texts[next] = _IsQuoted(raw) ? std::string_view(wanted._unquoted[next] = _Unquote(raw)) : raw;
            ++next;
        }
        if (raw.size() == rest.size())
            return index + 1;
        rest.remove_prefix(raw.size() + 1);
    }
}

std::vector<std::string> CsvRow::GetFields() const
{
    std::vector<std::string> fields;
    std::string_view rest = content;
    for (;;)
    {
        const std::string_view raw = _GetFirst(rest);
        fields.push_back(_IsQuoted(raw) ? _Unquote(raw) : std::string(raw));
        if (raw.size() == rest.size())
            return fields;
        rest.remove_prefix(raw.size() + 1);
    }
}

// The raw field that begins at the start of rest.
std::string_view CsvRow::_GetFirst(std::string_view rest) const
{
    std::size_t from = 0;
    if (_IsQuoted(rest))
    {
        for (from = rest.find(dialect.quote, 1); from != std::string_view::npos;
             from = rest.find(dialect.quote, from + 2))
            if (from + 1 == rest.size() || rest[from + 1] != dialect.quote)
                break;
        if (from == std::string_view::npos)
            return rest;
    }
    return rest.substr(0, rest.find(dialect.separator, from));
}

// Takes the quotes off one raw field. Text after the closing quote is kept as it is.
std::string CsvRow::_Unquote(std::string_view raw) const
{
    std::string text;
    text.reserve(raw.size());
    bool isInside = true;
    for (std::size_t i = 1; i < raw.size(); ++i)
    {
        if (isInside && raw[i] == dialect.quote)
        {
            if (i + 1 == raw.size() || raw[i + 1] != dialect.quote)
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
}  // namespace nxtick
