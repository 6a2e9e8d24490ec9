// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDateTimeSpan.h"

#include <ostream>
#include <string_view>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"
#include "core/time/internal/nxTimeText.h"

namespace
{
// Reads the parts of a span's text one after the other.
class SpanTextReader
{
public:
    explicit SpanTextReader(std::string_view text) : _text(text) {}

    bool IsAtEnd() const { return _text.empty(); }
    bool Take(char character)
    {
        if (!_text.starts_with(character))
            return false;
        _text.remove_prefix(1);
        return true;
    }
    // Takes digits that are followed by the unit. Every number of more than twelve digits becomes 10^12.
    bool TakePart(char unit, long long& number)
    {
        const std::size_t size = _CountDigits();
        return size < _text.size() && _text[size] == unit && _Read(size, number) && _Drop(size + 1);
    }
    // Takes digits, possibly a point and one to nine digits, and "S".
    bool TakeSeconds(long long& seconds, unsigned& nanoseconds)
    {
        const std::size_t size = _CountDigits();
        const std::string_view fraction = _text.substr(size, _text.find('S') - size);
        return size + fraction.size() < _text.size() && nxTimeText::ReadFraction(fraction, nanoseconds) &&
               _Read(size, seconds) && _Drop(size + fraction.size() + 1);
    }

private:
    std::size_t _CountDigits() const
    {
        const std::size_t end = _text.find_first_not_of("0123456789");
        return end == std::string_view::npos ? _text.size() : end;
    }
    bool _Read(std::size_t size, long long& number) const
    {
        std::string_view digits = _text.substr(0, size);
        std::uint64_t value = 0;
        if (!nxDigits::Parse(digits.data(), digits.data() + size, value))
            return false;
        while (digits.starts_with('0'))
            digits.remove_prefix(1);
        number = digits.size() > 12 ? 1'000'000'000'000 : static_cast<long long>(value);
        return true;
    }
    bool _Drop(std::size_t size)
    {
        _text.remove_prefix(size);
        return true;
    }

    std::string_view _text;
};

// The parts of a span without its sign. 10^12 of each unit still fit 64 bits as seconds.
struct SpanParts
{
    long long days = 0;
    long long hours = 0;
    long long minutes = 0;
    long long seconds = 0;
    unsigned nanoseconds = 0;

    bool Read(SpanTextReader& text)
    {
        bool isRead = text.TakePart('D', days);
        if (text.Take('T'))
        {
            const bool hasHours = text.TakePart('H', hours);
            const bool hasMinutes = text.TakePart('M', minutes);
            const bool hasSeconds = text.TakeSeconds(seconds, nanoseconds);
            isRead = hasHours || hasMinutes || hasSeconds;
        }
        return isRead && text.IsAtEnd();
    }
    long long GetTotalSeconds() const { return ((days * 24 + hours) * 60 + minutes) * 60 + seconds; }
};

// Writes a part and its unit, or nothing for 0.
char* WritePart(char* out, int number, char unit)
{
    if (number == 0)
        return out;
    out = nxDigits::Write(out, static_cast<unsigned>(number));
    *out++ = unit;
    return out;
}

// Writes seconds with as many decimals as they need.
char* WriteSeconds(char* out, int seconds, int nanoseconds)
{
    out = nxDigits::Write(out, static_cast<unsigned>(seconds));
    if (nanoseconds != 0)
    {
        *out++ = '.';
        out = nxDigits::WriteFixed<8>(out, static_cast<unsigned>(nanoseconds) / 10);
        *out++ = static_cast<char>('0' + nanoseconds % 10);
        while (out[-1] == '0')
            --out;
    }
    *out++ = 'S';
    return out;
}

// Writes what follows the sign. @param span not negative.
char* WriteParts(char* out, nxDateTimeSpan span)
{
    *out++ = 'P';
    char* const days = WritePart(out, span.GetDays(), 'D');
    out = days;
    *out++ = 'T';
    char* const time = out;
    out = WritePart(out, span.GetHours(), 'H');
    out = WritePart(out, span.GetMinutes(), 'M');
    if (span.GetSeconds() != 0 || span.GetNanoseconds() != 0)
        out = WriteSeconds(out, span.GetSeconds(), span.GetNanoseconds());
    if (out != time)
        return out;
    // Nothing but days, or nothing at all.
    return span.GetDays() != 0 ? days : WriteSeconds(out, 0, 0);
}
}  // namespace

nxErrorEnum nxDateTimeSpan::GetTotalNanoseconds(long long& total) const
{
    if (IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    long long nanoseconds = 0;
    // The days toward zero and a rest of the same sign: neither step is beyond the result.
    if (__builtin_mul_overflow(static_cast<long long>(GetDays()), NanosecondsPerDay, &nanoseconds) ||
        __builtin_add_overflow(nanoseconds, _GetRest(), &nanoseconds))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    total = nanoseconds;
    return nxErrorEnum();
}

double nxDateTimeSpan::GetTotalSecondsAsDouble() const
{
    constexpr long long exactNanoseconds = 1LL << 53;
    long long nanoseconds = 0;
    if (GetTotalNanoseconds(nanoseconds).IsOK() && nanoseconds <= exactNanoseconds && nanoseconds >= -exactNanoseconds)
        return static_cast<double>(nanoseconds) / 1e9;
    return static_cast<double>(GetTotalSeconds()) + static_cast<double>(GetNanoseconds()) / 1e9;
}

nxErrorEnum nxDateTimeSpan::SetFromString(const std::string& text)
{
    SpanTextReader reader(text);
    const bool isNegative = reader.Take('-');
    SpanParts parts;
    if (!reader.Take('P') || !parts.Read(reader))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const nxDateTimeSpan span = GetFromSeconds(parts.GetTotalSeconds(), parts.nanoseconds);
    if (span.IsNull())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    *this = isNegative ? -span : span;
    return nxErrorEnum();
}

nxErrorEnum nxDateTimeSpan::SetFromString(const char* text) { return SetFromString(nxStringHelper::GetAsString(text)); }

void nxDateTimeSpan::AppendAsString(std::string& out) const
{
    if (IsNull())
        return;
    char text[64];
    const bool isNegative = _days < 0;
    *text = '-';
    const char* const begin = text + (isNegative ? 0 : 1);
    const char* const end = WriteParts(text + 1, isNegative ? -*this : *this);
    out.append(begin, static_cast<std::size_t>(end - begin));
}

std::string nxDateTimeSpan::GetAsString() const
{
    std::string text;
    AppendAsString(text);
    return text;
}

void nxDateTimeSpan::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out);
}

std::string nxDateTimeSpan::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, nxDateTimeSpan span) { return stream << span.GetAsLogString(); }
