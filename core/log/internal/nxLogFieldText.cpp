// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFieldText.h"

#include <algorithm>
#include <cstring>

#include "core/log/internal/nxLogEscape.h"

bool nxLogFieldText::IsPlain(std::string_view text) noexcept
{
    const auto isPlain = [](char c) { return c > ' ' && c < '\x7F' && c != '=' && c != '"' && c != '\\'; };
    return !text.empty() && std::all_of(text.begin(), text.end(), isPlain);
}

char* nxLogFieldText::PutValue(char* out, std::string_view text) noexcept
{
    if (IsPlain(text))
    {
        std::memcpy(out, text.data(), text.size());
        return out + text.size();
    }
    *out++ = '"';
    while (!text.empty())
    {
        if (text[0] == '"' || text[0] == '\\')
            *out++ = '\\';
        text.remove_prefix(nxLogEscape::PutCharacter(out, text));
    }
    *out++ = '"';
    return out;
}
