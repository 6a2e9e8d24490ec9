// SPDX-License-Identifier: Apache-2.0
#include "Json.h"

#include <algorithm>

#include "core/text/nxAlgorithm.h"
#include "core/text/nxPrintableText.h"

namespace nxtick
{
namespace
{
void AppendJsonCharacter(std::string_view character, std::string& text)
{
    const char c = character.empty() ? '\0' : character.front();
    if (character.empty())
        text += "\xEF\xBF\xBD";
    else if (c == '"' || c == '\\')
        (text += '\\') += c;
    else if (static_cast<unsigned char>(c) < 0x20)
        nxAlgorithm::AppendAsHex(static_cast<unsigned char>(c), text += "\\u00");
    else
        text += character;
}
}  // namespace

void AppendJson(std::string_view value, std::string& text)
{
    text += '"';
    while (!value.empty())
    {
        const std::size_t size = nxPrintableText::GetCharacterSize(value);
        AppendJsonCharacter(value.substr(0, size), text);
        value.remove_prefix(std::max<std::size_t>(1, size));
    }
    text += '"';
}
}  // namespace nxtick
