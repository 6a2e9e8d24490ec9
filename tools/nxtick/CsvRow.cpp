// SPDX-License-Identifier: Apache-2.0
#include "CsvRow.h"

#include <bit>
#include <cstring>

namespace nxtick
{
namespace
{
// Takes the quotes off one raw field. Text after the closing quote is kept as it is.
std::string Unquote(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    bool isQuoted = true;
    for (std::size_t i = 1; i < raw.size(); ++i)
    {
        if (isQuoted && raw[i] == '"')
        {
            if (i + 1 == raw.size() || raw[i + 1] != '"')
            {
                isQuoted = false;
                continue;
            }
            ++i;
        }
        text += raw[i];
    }
    return text;
}

// The raw field that begins at the start of rest.
std::string_view FirstField(std::string_view rest)
{
    std::size_t from = 0;
    if (!rest.empty() && rest.front() == '"')
    {
        for (from = rest.find('"', 1); from != std::string_view::npos; from = rest.find('"', from + 2))
            if (from + 1 == rest.size() || rest[from + 1] != '"')
                break;
        if (from == std::string_view::npos)
            return rest;
    }
    return rest.substr(0, rest.find(',', from));
}

// Bit 7 of each of eight bytes that is a comma.
std::uint64_t CommasOf(const char* bytes)
{
    static_assert(std::endian::native == std::endian::little, "the first byte has the lowest bits");
    constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7F;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    word ^= 0x2C2C2C2C2C2C2C2C;
    return ~(((word & low7) + low7) | word | low7);
}

std::size_t CountBytes(std::uint64_t marks) { return ((marks >> 7) * 0x0101010101010101) >> 56; }

// Counts the commas of a row without quotes, eight bytes at a time, and finds one field.
struct CommaSearch
{
    std::size_t before;  // this many commas are before the field
    std::size_t count = 0;
    std::size_t begin = 0;
    std::size_t end = std::string_view::npos;

    void Add(std::size_t at)
    {
        if (++count == before)
            begin = at + 1;
        else if (count == before + 1)
            end = at;
    }

    void AddAll(std::size_t at, std::uint64_t commas)
    {
        if (count > before)
            count += CountBytes(commas);
        else
            for (; commas != 0; commas &= commas - 1)
                Add(at + static_cast<std::size_t>(std::countr_zero(commas)) / 8);
    }

    void Search(std::string_view row)
    {
        std::size_t at = 0;
        for (; at + 8 <= row.size(); at += 8)
            AddAll(at, CommasOf(row.data() + at));
        if (const std::size_t seen = at + 8 - row.size(); at != 0 && seen < 8)  // of the last eight bytes
            AddAll(row.size() - 8, CommasOf(row.data() + row.size() - 8) & (~std::uint64_t{0} << (8 * seen)));
        else
            for (; at < row.size(); ++at)
                if (row[at] == ',')
                    Add(at);
    }
};
}  // namespace

std::size_t CsvRow::FindField(std::size_t index, std::string& scratch, std::string_view& field) const
{
    if (hasQuotes)
        return _FindQuoted(index, scratch, field);
    CommaSearch commas{index};
    commas.Search(content);
    if (commas.count >= index)
        field = content.substr(commas.begin, commas.end - commas.begin);
    return commas.count + 1;
}

std::size_t CsvRow::_FindQuoted(std::size_t index, std::string& scratch, std::string_view& field) const
{
    std::string_view rest = content;
    for (std::size_t count = 1;; ++count)
    {
        const std::string_view raw = FirstField(rest);
        if (count == index + 1)
            field = !raw.empty() && raw.front() == '"' ? std::string_view(scratch = Unquote(raw)) : raw;
        if (raw.size() == rest.size())
            return count;
        rest.remove_prefix(raw.size() + 1);
    }
}

std::vector<std::string> CsvRow::GetFields() const
{
    std::vector<std::string> fields;
    std::string_view rest = content;
    for (;;)
    {
        const std::string_view raw = FirstField(rest);
        fields.push_back(!raw.empty() && raw.front() == '"' ? Unquote(raw) : std::string(raw));
        if (raw.size() == rest.size())
            return fields;
        rest.remove_prefix(raw.size() + 1);
    }
}
}  // namespace nxtick
