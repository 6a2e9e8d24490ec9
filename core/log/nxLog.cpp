#include "core/log/nxLog.h"

#include <charconv>

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/thread/nxThreadIndex.h"

namespace
{
template <class Number>
void AppendNumber(std::string& text, Number number, int base = 10)
{
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number, base).ptr);
}
}  // namespace

nxLog::nxLog(const nxLogLevelEnum& level, const char* sourceFile, unsigned line, const nxTimeStamp& timeStamp)
    : _level(level),
      _sourceFile(sourceFile == nullptr ? "" : sourceFile),
      _line(line),
      _timeStamp(timeStamp),
      _threadIndex(nxThreadIndex::GetIndexOfCurrentThread())
{
}

nxLog& nxLog::operator<<(bool value) { return *this << (value ? "TRUE" : "FALSE"); }
nxLog& nxLog::operator<<(char value) { return *this << static_cast<int>(value); }
nxLog& nxLog::operator<<(signed char value) { return *this << static_cast<int>(value); }
nxLog& nxLog::operator<<(unsigned char value) { return *this << static_cast<int>(value); }
nxLog& nxLog::operator<<(short value) { return *this << static_cast<int>(value); }
nxLog& nxLog::operator<<(unsigned short value) { return *this << static_cast<int>(value); }
nxLog& nxLog::operator<<(int value) { return *this << static_cast<long long>(value); }
nxLog& nxLog::operator<<(unsigned value) { return *this << static_cast<unsigned long long>(value); }
nxLog& nxLog::operator<<(long value) { return *this << static_cast<long long>(value); }
nxLog& nxLog::operator<<(unsigned long value) { return *this << static_cast<unsigned long long>(value); }

nxLog& nxLog::operator<<(long long value)
{
    AppendNumber(_text, value);
    return *this;
}

nxLog& nxLog::operator<<(unsigned long long value)
{
    AppendNumber(_text, value);
    return *this;
}

nxLog& nxLog::operator<<(const char* text) { return *this << std::string_view(text == nullptr ? "" : text); }
nxLog& nxLog::operator<<(const std::string& text) { return *this << std::string_view(text); }

nxLog& nxLog::operator<<(std::string_view text)
{
    _text.append(text);
    return *this;
}

nxLog& nxLog::operator<<(const nxLogCharLenPair& text)
{
    return *this << std::string_view(text.GetText(), text.GetLength());
}

nxLog& nxLog::operator<<(const void* address)
{
    _text.append("0x");
    AppendNumber(_text, reinterpret_cast<unsigned long long>(address), 16);
    return *this;
}

nxLog& nxLog::operator<<(const nxEnum& value) { return *this << value.GetShortDescription(); }
nxLog& nxLog::operator<<(const nxBitMask& mask) { return *this << mask.GetShortDescription(" "); }
nxLog& nxLog::operator<<(const nxBitMask64& mask) { return *this << mask.GetShortDescription(" "); }
