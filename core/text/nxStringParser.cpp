// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringParser.h"

#include <algorithm>

std::string nxStringParser::_TakeUntil(std::size_t separator)
{
    const std::size_t begin = _position;
    if (separator == std::string::npos)
    {
        _position = _end;
        return _text.substr(begin);
    }
    _position = separator + 1;
    return _text.substr(begin, separator - begin);
}

std::string nxStringParser::GetSubString(char separator)
{
    return IsFullyParsed() ? std::string() : _TakeUntil(_text.find(separator, _position));
}

std::string nxStringParser::GetSubString(char separator, char other)
{
    const char either[] = {separator, other};
    return IsFullyParsed() ? std::string() : _TakeUntil(_text.find_first_of(either, _position, sizeof either));
}

void nxStringParser::ExtractAllSubstrings(const std::string& text, std::deque<std::string>& fields, bool flag,
                                          char separator)
{
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        if (flag)
            fields.emplace_back(text, begin, end - begin);
        else
            fields.emplace_front(text, begin, end - begin);
        begin = end + 1;
    }
}
