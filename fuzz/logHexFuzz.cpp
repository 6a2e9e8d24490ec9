// SPDX-License-Identifier: Apache-2.0
// Log records made of any values, as messages and as lines, and hex dumps of any bytes, against references that share
// nothing with the log.

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogManager.h"
#include "core/numeric/nxDecimal.h"
#include "core/text/nxStringHelper.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// Takes values off the front of the input; zeros when it is at its end.
class Input
{
public:
    explicit Input(std::string_view bytes) : _bytes(bytes) {}

    bool IsAtEnd() const { return _bytes.empty(); }
    template <class Value>
    Value Take()
    {
        Value value{};
        const std::size_t size = std::min(sizeof value, _bytes.size());
        std::memcpy(&value, _bytes.data(), size);
        _bytes.remove_prefix(size);
        return value;
    }
    std::string_view TakeText(std::size_t size)
    {
        const std::string_view text = _bytes.substr(0, size);
        _bytes.remove_prefix(text.size());
        return text;
    }
    std::string_view GetRest() const { return _bytes; }

private:
    std::string_view _bytes;
};

template <class... Arguments>
std::string Format(const char* format, Arguments... arguments)
{
    char text[1200];
    const int size = std::snprintf(text, sizeof text, format, arguments...);
    Require(size >= 0 && size < static_cast<int>(sizeof text));
    return std::string(text, static_cast<std::size_t>(size));
}

// Streams a value and returns the text that it must have.
std::string StreamOne(nxLog& record, Input& input)
{
    switch (input.Take<unsigned char>() % 14)
    {
        case 0:
        {
            const bool value = input.Take<unsigned char>() % 2 != 0;
            record << value;
            return value ? "TRUE" : "FALSE";
        }
        case 1:
        {
            const auto value = input.Take<char>();
            record << value;
            return Format("%d", value);
        }
        case 2:
        {
            const auto value = input.Take<short>();
            record << value << static_cast<unsigned short>(value);
            return Format("%d%u", value, static_cast<unsigned short>(value));
        }
        case 3:
        {
            const auto value = input.Take<int>();
            record << value;
            return Format("%d", value);
        }
        case 4:
        {
            const auto value = input.Take<unsigned>();
            record << value;
            return Format("%u", value);
        }
        case 5:
        {
            const auto value = input.Take<std::int64_t>();
            record << value;
            return Format("%" PRId64, value);
        }
        case 6:
        {
            const auto value = input.Take<std::uint64_t>();
            record << value;
            return Format("%" PRIu64, value);
        }
        case 7:
        {
            const auto value = input.Take<double>();
            record << value;
            return nxStringHelper::GetAsString(value);
        }
        case 8:
        {
            const auto mantissa = input.Take<long long>();
            const nxDecimal value(mantissa, input.Take<unsigned char>());
            record << value;
            return value.GetAsLogString('.');
        }
        case 9:
        {
            const std::string text(input.TakeText(input.Take<unsigned char>()));
            record << text;
            return text;
        }
        case 10:
        {
            const std::string text(input.TakeText(input.Take<unsigned char>()));
            record << text.c_str();
            return text.c_str();
        }
        case 11:
        {
            const std::string_view text = input.TakeText(input.Take<unsigned short>());
            record << nxLogCharLenPair(text.data(), text.size());
            return std::string(text);
        }
        case 12:
        {
            const nxErrorEnum value(static_cast<nxEnumValue>(1'000'000 + input.Take<unsigned short>() % 2'000));
            record << value;
            return value.GetShortDescription();
        }
        default:
        {
            const auto value = input.Take<unsigned>();
            const nxValueWrapper<unsigned> wrapper(value);
            record << wrapper << nxLog::nxLogDestinationUserID(wrapper);
            return value == 0xFFFFFFFF ? "NULL" : value == 0xFFFFFFFE ? "NO_CHANGE" : Format("%u", value);
        }
    }
}

// The character of UTF-8 at a position: its number and size, or size 0 where there is none.
std::pair<unsigned, std::size_t> Decode(const std::string& text, std::size_t at)
{
    constexpr unsigned smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto byte = [&](std::size_t i)
    { return static_cast<unsigned char>(at + i < text.size() ? text[at + i] : 0); };
    const unsigned lead = byte(0);
    const std::size_t size = lead < 0x80 ? 1 : lead >> 5 == 6 ? 2 : lead >> 4 == 14 ? 3 : lead >> 3 == 30 ? 4 : 0;
    unsigned number = size < 2 ? lead : lead & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i)
    {
        if (byte(i) >> 6 != 2)
            return {0, 0};
        number = number << 6 | (byte(i) & 0x3FU);
    }
    const bool isCharacter = size != 0 && number >= smallest[size] && number < 0x110000 && number >> 11 != 0x1B;
    return {number, isCharacter ? size : 0};
}

// What a line shows of a text. A byte that is no UTF-8 counts as the character of its number.
std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (std::size_t at = 0; at < text.size();)
    {
        auto [number, size] = Decode(text, at);
        if (size == 0)
        {
            number = static_cast<unsigned char>(text[at]);
            size = 1;
        }
        const bool isHidden = (number < 0x20 && number != '\t') || (0x7F <= number && number < 0xA0) ||
                              (0x2028 <= number && number <= 0x202E) || (0x2066 <= number && number <= 0x2069);
        for (const std::size_t end = at + size; at < end; ++at)
            escaped += isHidden ? Format("\\x%02X", static_cast<unsigned char>(text[at])) : std::string(1, text[at]);
    }
    return escaped;
}

void CheckRecord(Input input)
{
    const std::string file(input.TakeText(input.Take<unsigned char>() % 40));
    const auto lineNumber = input.Take<unsigned>();
    nxLog record(NX_LOG_LEVEL_INFO, file.c_str(), lineNumber, nxTimeStamp(0, 0));
    std::string expected, shown;
    while (!input.IsAtEnd())
    {
        const std::string text = StreamOne(record, input);
        expected += text;
        shown += Escaped(text);
    }
    Require(record.GetText() == expected);
    const nxLog copy(record);
    Require(copy.GetText() == expected && std::strcmp(copy.GetSourceFile(), file.c_str()) == 0);

    // A character of which two values have a part each is shown by the quick way and hidden by the careful one.
    const std::string place = " [" + Escaped(file.c_str()) + ":" + Format("%u", lineNumber) + "]\r\n";
    const auto isLine = [&](const std::string& message)
    {
        std::string line;
        nxLogLine::Append(line, record, {nxLogLineStyle::LevelAndText, false});
        const bool isShort = line == "[INF] " + message + "\n";
        line.clear();
        nxLogLine::Append(line, record, {nxLogLineStyle::Full, true});
        const std::string end = "] " + message + place;
        return isShort && line.size() > end.size() && line.starts_with("[INF][") && line.ends_with(end);
    };
    Require(isLine(shown) || isLine(Escaped(expected)));
}

// Keeps the texts of all records.
class Keeper final : public nxLogDevice
{
public:
    void Write(const nxLog& record) override { texts.push_back(record.GetText()); }
    void Flush() override {}
    void Destroy() override {}

    std::vector<std::string> texts;
};

// The dump as printf makes it.
std::vector<std::string> ReferenceDump(std::string_view bytes, unsigned perLine, char placeholder, bool withOffsets)
{
    std::vector<std::string> lines{
        Format("Dumping memory as hex and ascii. At most %zu bytes of data will be dumped", bytes.size())};
    for (std::size_t offset = 0; offset < bytes.size(); offset += perLine)
    {
        const std::string_view part = bytes.substr(offset, perLine);
        std::string hex, characters;
        for (const char c : part)
        {
            const auto byte = static_cast<unsigned char>(c);
            if (perLine >= 8 && characters.size() == (perLine + 1) / 2)
                hex += ' ';
            hex += Format("%02X ", byte);
            characters += ' ' <= byte && byte <= '~' ? c : placeholder;
        }
        const int width = static_cast<int>(3 * perLine + (perLine >= 8 ? 1 : 0));
        lines.push_back((withOffsets ? Format("%08zX  ", offset) : "") + Format("%-*s", width, hex.c_str()) + " |" +
                        characters + "|");
    }
    return lines;
}

void CheckDump(Input input)
{
    static Keeper& keeper = *new Keeper;
    nxLogManager& manager = nxLogManager::GetInstance();
    manager.RegisterLogDevice(&keeper);
    keeper.texts.clear();
    const auto perLine = static_cast<unsigned>(input.Take<unsigned short>() % 300);
    const auto placeholder = input.Take<char>();
    const bool withOffsets = input.Take<unsigned char>() % 2 != 0;
    const std::string_view bytes = input.GetRest();
    const nxErrorEnum error = nxLog::LogBufferAsHex(bytes.data(), static_cast<unsigned>(bytes.size()), perLine,
                                                    NX_LOG_LEVEL_INFO, "fuzz", 1, placeholder, withOffsets);
    manager.WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(60.0));
    if (perLine == 0 || perLine > nxLog::MaximumBytesPerLine)
    {
        Require(error == NX_ERR_INVALID_PARAMETER && keeper.texts.size() == 1);
        Require(keeper.texts[0] == "Unable to dump memory as hex and ascii. Bytes per line value is not valid");
        return;
    }
    Require(error.IsOK() && keeper.texts == ReferenceDump(bytes, perLine, placeholder, withOffsets));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Input input(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    if (data[0] % 2 == 0)
        CheckRecord(input);
    else
        CheckDump(input);
    return 0;
}
