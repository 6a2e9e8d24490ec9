// SPDX-License-Identifier: Apache-2.0
// Splitting any text at any separators: the fields and separators put together again are the text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>

#include "core/text/nxStringHelper.h"
#include "core/text/nxStringParser.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckFields(const std::string& text, char separator)
{
    nxStringParser parser(text);
    std::string joined = parser.GetSubString(separator);
    while (!parser.IsFullyParsed())
        joined.append(1, separator).append(parser.GetSubString(separator));
    Require(joined == text);
    Require(parser.GetSubString(separator).empty());

    std::deque<std::string> fields;
    nxStringParser::ExtractAllSubstrings(text, fields, true, separator);
    std::deque<std::string> reversed;
    nxStringParser::ExtractAllSubstrings(text, reversed, false, separator);
    Require(fields == std::deque<std::string>(reversed.rbegin(), reversed.rend()));
    joined.clear();
    for (std::size_t i = 0; i < fields.size(); ++i)
        joined.append(i == 0 ? 0 : 1, separator).append(fields[i]);
    if (!text.empty() && text.back() == separator)
        joined.append(1, separator);
    Require(joined == text);
}

void CheckTwoSeparators(const std::string& text, char separator, char other)
{
    nxStringParser parser(text);
    std::size_t position = 0;
    while (!parser.IsFullyParsed())
    {
        const std::string field = parser.GetSubString(separator, other);
        Require(text.compare(position, field.size(), field) == 0);
        position += field.size();
        Require(position == text.size() || text[position] == separator || text[position] == other);
        ++position;
    }
    Require(position == text.size() + 1);
}

void CheckEditing(const std::string& text, const std::string& what)
{
    std::string replaced = text;
    nxStringHelper::Replace(replaced, what, "");
    Require(what.empty() ? replaced == text : (text.size() - replaced.size()) % what.size() == 0);
    std::string trimmed = text;
    nxStringHelper::RightTrim(trimmed, what);
    Require(text.compare(0, trimmed.size(), trimmed) == 0);
    Require(trimmed.empty() || what.find(trimmed.back()) == std::string::npos);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const char separator = static_cast<char>(data[0]);
    const char other = static_cast<char>(data[1]);
    const std::string text(reinterpret_cast<const char*>(data + 2), size - 2);
    CheckFields(text, separator);
    CheckTwoSeparators(text, separator, other);
    CheckEditing(text, text.substr(text.size() / 2, 2));
    return 0;
}
