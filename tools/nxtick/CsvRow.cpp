// SPDX-License-Identifier: Apache-2.0
#include "CsvRow.h"

#include <bit>
#include <cstring>

namespace nxtick
{
namespace
{
constexpr std::uint64_t everyByte = 0x0101010101010101;

// Bit 7 of each of eight bytes that is the same as in the pattern.
std::uint64_t MarkEqual(const char* bytes, std::uint64_t pattern)
{
    static_assert(std::endian::native == std::endian::little, "the first byte has the lowest bits");
    constexpr std::uint64_t low7 = 0x7F * everyByte;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    word ^= pattern;
    return ~(((word & low7) + low7) | word | low7);
}

std::size_t CountBytes(std::uint64_t marks) { return ((marks >> 7) * everyByte) >> 56; }

// Counts the separators of a row without quotes, eight bytes at a time, and finds some fields.
struct SeparatorSearch
{
    std::string_view row;
    const std::size_t* wanted;  // ascending
    const std::size_t* lastWanted;
    std::string_view* found;
    std::size_t count = 0;  // of separators
    std::size_t begin = 0;  // of the field after the last one

    void EndField(std::size_t at)
    {
        if (count == *wanted)
        {
            *found++ = row.substr(begin, at - begin);
            ++wanted;
        }
    }

    void Add(std::size_t at)
    {
        if (wanted != lastWanted)
            EndField(at);
        ++count;
        begin = at + 1;
    }

    void AddAll(std::size_t at, std::uint64_t marks)
    {
        if (wanted == lastWanted)
            count += CountBytes(marks);
        else
            for (; marks != 0; marks &= marks - 1)
                Add(at + static_cast<std::size_t>(std::countr_zero(marks)) / 8);
    }

    void Search(char separator)
    {
        const std::uint64_t pattern = everyByte * static_cast<unsigned char>(separator);
        std::size_t at = 0;
        for (; at + 8 <= row.size(); at += 8)
            AddAll(at, MarkEqual(row.data() + at, pattern));
        if (const std::size_t seen = at + 8 - row.size(); at != 0 && seen < 8)  // of the last eight bytes
            AddAll(row.size() - 8, MarkEqual(row.data() + row.size() - 8, pattern) & (~std::uint64_t{0} << (8 * seen)));
        else
            for (; at < row.size(); ++at)
                if (row[at] == separator)
                    Add(at);
        if (wanted != lastWanted)
            EndField(row.size());
    }
};
}  // namespace

std::size_t CsvRow::Find(WantedFields& wanted) const
{
    if (hasQuotes)
        return _FindQuoted(wanted);
    const std::vector<std::size_t>& indices = wanted._indices;
    SeparatorSearch search{content, indices.data(), indices.data() + indices.size(), wanted._texts.data()};
    search.Search(dialect.separator);
    return search.count + 1;
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
