// SPDX-License-Identifier: Apache-2.0
// Log records of any bytes as lines of JSON, read by a parser that shares nothing with the log.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// The bytes of the character at the start of a text; 0 where there is none.
std::size_t CharacterSize(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const std::size_t size = byte(0) < 0x80       ? 1
                             : byte(0) >> 5 == 6  ? 2
                             : byte(0) >> 4 == 14 ? 3
                             : byte(0) >> 3 == 30 ? 4
                                                  : 0;
    unsigned number = size < 2 ? byte(0) : byte(0) & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i)
    {
        if (byte(i) >> 6 != 2)
            return 0;
        number = number << 6 | (byte(i) & 0x3FU);
    }
    constexpr unsigned smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return size != 0 && number >= smallest[size] && number < 0x110000 && number >> 11 != 0x1B ? size : 0;
}

std::string Replaced(std::string_view text)
{
    std::string replaced;
    while (!text.empty())
    {
        const std::size_t size = CharacterSize(text);
        replaced += size == 0 ? "\xEF\xBF\xBD" : text.substr(0, size);
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return replaced;
}

class Reader
{
public:
    explicit Reader(std::string_view text) : _text(text) {}

    void Expect(std::string_view word)
    {
        Require(_text.starts_with(word));
        _text.remove_prefix(word.size());
    }
    std::string TakeString()
    {
        Expect("\"");
        std::string value;
        while (!_text.starts_with('"'))
            if (_text.starts_with('\\'))
                value += TakeEscape();
            else
            {
                const std::size_t size = CharacterSize(_text);
                Require(size != 0 && static_cast<unsigned char>(_text[0]) >= 0x20 && _text[0] != 0x7F);
                value += _text.substr(0, size);
                _text.remove_prefix(size);
            }
        Expect("\"");
        return value;
    }
    bool Take(char c)
    {
        const bool isThere = _text.starts_with(c);
        _text.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }
    std::string TakeValue()
    {
        if (_text.starts_with('"'))
            return TakeString();
        const std::string word(_text.substr(0, _text.find_first_of(",}")));
        Expect(word);
        return word;
    }

private:
    std::string TakeEscape()
    {
        Require(_text.size() > 1);
        const char c = _text[1];
        if (c != 'u')
        {
            Require(std::strchr("\"\\nrt", c) != nullptr);
            _text.remove_prefix(2);
            return std::string(1, c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c);
        }
        Require(_text.size() > 5);
        const unsigned long number = std::strtoul(std::string(_text.substr(2, 4)).c_str(), nullptr, 16);
        _text.remove_prefix(6);
        if (number < 0x80)
            return std::string(1, static_cast<char>(number));
        const char last = static_cast<char>(0x80 | (number & 0x3F));
        if (number < 0x800)
            return {static_cast<char>(0xC0 | number >> 6), last};
        return {static_cast<char>(0xE0 | number >> 12), static_cast<char>(0x80 | (number >> 6 & 0x3F)), last};
    }

    std::string_view _text;
};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Texts of 0 to 255 bytes, each after its size and a byte that tells what it is.
    std::string_view input(reinterpret_cast<const char*>(data), size);
    nxLog record(NX_LOG_LEVEL_INFO, "fuzz.cpp", 1, nxTimeStamp(0, 0));
    std::string message;
    std::map<std::string, std::string> expected = {
        {"time", "1970-01-01T00:00:00.000000Z"}, {"level", "INF"}, {"thread", "0"}, {"source", "fuzz.cpp:1"}};
    std::map<std::string, unsigned> counts = {{"message", 1}};
    const auto add = [&](nxFieldName name, std::string_view text)
    {
        record << nxField(name, text);
        const std::string plain(name.Get());
        const unsigned count = ++counts[plain];
        expected[count == 1 ? plain : plain + "#" + std::to_string(count)] = Replaced(text);
    };
    while (input.size() >= 2)
    {
        const std::string_view text = input.substr(2, static_cast<unsigned char>(input[0]));
        const unsigned kind = static_cast<unsigned char>(input[1]) % 5;
        input.remove_prefix(2 + text.size());
        if (kind == 0)
            add("a", text);
        else if (kind == 1)
            add("a-name.of_30_characters-or-so.", text);
        else if (kind == 2)
            add("message", text);
        else
        {
            record << text;
            message += text;
        }
    }
    expected["message"] = Replaced(message);

    std::string line;
    nxLogLine::Append(line, record, {nxLogLineStyle::Json, false});
    Reader reader(line);
    std::map<std::string, std::string> found;
    reader.Expect("{");
    do
    {
        const std::string name = reader.TakeString();
        reader.Expect(":");
        Require(found.emplace(name, reader.TakeValue()).second);
    } while (reader.Take(','));
    reader.Expect("}\n");
    Require(found == expected);
    return 0;
}
