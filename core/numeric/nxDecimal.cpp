#include "core/numeric/nxDecimal.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <ostream>
#include <type_traits>

#include "core/enum/nxValueStatusEnum.h"
#include "core/text/nxDigits.h"
#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

static_assert(std::is_trivially_copyable_v<nxDecimal> && std::is_standard_layout_v<nxDecimal>);

namespace
{
// Two numbers of different scales that differ by no more are equal.
constexpr double tolerance = 2.220446049250313e-16;

constexpr const char* nullText = "NULL";
constexpr const char* noChangeText = "NO_CHANGE";

std::size_t Copy(char* buffer, std::string_view text)
{
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return text.size();
}

std::uint64_t Power(std::size_t digits) { return nxPowersOfTen::GetInteger(static_cast<unsigned char>(digits)); }

// 0x80 in the lowest byte of `word` that equals `character`; above it the result is unreliable. 0 when none does.
std::uint64_t FindByte(std::uint64_t word, char character)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t zeroWhereEqual = word ^ (ones * static_cast<unsigned char>(character));
    return (zeroWhereEqual - ones) & ~zeroWhereEqual & (ones << 7);
}

// The digits of a number read so far, eight characters at a time.
class NumberReader
{
public:
    explicit NumberReader(char separator) : _separator(separator) {}

    // Takes the last `count` characters of `word`, whose other characters are '0'. False: not a number.
    bool Take(std::uint64_t word, std::size_t count)
    {
        std::size_t digits = count;
        if (const std::uint64_t hit = FindByte(word, _separator); hit != 0)
        {
            if (_separatorSeen)
                return false;
            _separatorSeen = true;
            // Close the gap; a second separator stays in place and is no digit.
            const int position = std::countr_zero(hit) & ~7;
            const std::uint64_t below = (std::uint64_t{1} << position) - 1;
            word = (word & (~below << 8)) | ((word & below) << 8) | '0';
            --digits;
            _places = static_cast<std::size_t>(56 - position) / 8;
        }
        else if (_separatorSeen)
            _places += digits;
        if (!nxDigits::AreDigits(word))
            return false;
        _mantissa = _mantissa * Power(digits) + nxDigits::Gather(word);
        _digits += digits;
        return true;
    }

    bool HasDigits() const { return _digits != 0; }
    std::uint64_t GetMantissa() const { return _mantissa; }
    unsigned char GetPlaces() const { return static_cast<unsigned char>(_places); }

private:
    std::uint64_t _mantissa = 0;
    std::size_t _digits = 0;
    std::size_t _places = 0;
    char _separator;
    bool _separatorSeen = false;
};

// Reads digits with at most one separator. False, with nothing stored, for anything else.
bool ReadNumber(std::string_view text, char separator, std::uint64_t& mantissa, unsigned char& places)
{
    // A digit is read as a digit even when it is meant as the separator, which then never occurs.
    if (separator >= '0' && separator <= '9')
        return nxDigits::Parse(text.data(), text.data() + text.size(), mantissa);
    if (text.empty())
        return false;
    NumberReader reader(separator);
    for (; text.size() > 8; text.remove_prefix(8))
        if (!reader.Take(nxDigits::Load(text.data()), 8))
            return false;
    if (!reader.Take(nxDigits::LoadRightAligned(text.data(), text.size()), text.size()) || !reader.HasDigits())
        return false;
    mantissa = reader.GetMantissa();
    places = reader.GetPlaces();
    return true;
}

// a + b modulo `modulus`, for a and b below it and a modulus of 2^63 at most.
std::uint64_t AddModulo(std::uint64_t a, std::uint64_t b, std::uint64_t modulus)
{
    const std::uint64_t sum = a + b;
    return sum >= modulus ? sum - modulus : sum;
}

std::uint64_t TimesTenModulo(std::uint64_t value, std::uint64_t modulus)
{
    const std::uint64_t two = AddModulo(value, value, modulus);
    const std::uint64_t four = AddModulo(two, two, modulus);
    const std::uint64_t five = AddModulo(four, value, modulus);
    return AddModulo(five, five, modulus);
}
}  // namespace

nxDecimal::nxDecimal(const std::string& text, char separator)
{
    if (!SetFromStringView(text, separator).IsOK())
        SetNull();
}

const nxValueStatusEnum& nxDecimal::GetStatus() const
{
    // Never destroyed: they have nothing to destroy. Other objects' destructors may still ask.
    static_assert(std::is_trivially_destructible_v<nxValueStatusEnum>);
    static const nxValueStatusEnum valid(NX_VALUE_STATUS_VALID);
    static const nxValueStatusEnum null(NX_VALUE_STATUS_NULL);
    static const nxValueStatusEnum noChange(NX_VALUE_STATUS_NO_CHANGE);
    return IsValid() ? valid : (IsNull() ? null : noChange);
}

void nxDecimal::SetDecimalPlaces(const unsigned char& places, bool onlyDropZeros)
{
    if (!IsValid())
        return;
    const unsigned char wanted = places;
    const unsigned char present = GetDecimalPlaces();
    if (wanted >= present)
    {
        const std::uint64_t power = Power(static_cast<std::size_t>(wanted - present));
        *this = nxDecimal(_FromParts{}, _Wrapped(static_cast<std::uint64_t>(_mantissa) * power), wanted);
    }
    else if (onlyDropZeros)
        Normalise(wanted);
    else
    {
        // Nothing is left of 19 digits when 19 are cut.
        const auto cut = static_cast<std::size_t>(present - wanted);
        *this = nxDecimal(_FromParts{}, cut < 19 ? _mantissa / static_cast<long long>(Power(cut)) : 0, wanted);
    }
}

void nxDecimal::Normalise(const unsigned char& minimumPlaces)
{
    const std::uint64_t minimum = minimumPlaces;
    if (!IsValid() || _format <= minimum)
        return;
    if (_mantissa == 0)
        _format = minimum;
    for (; _format > minimum && _mantissa % 10 == 0; --_format)
        _mantissa /= 10;
}

void nxDecimal::_RoundLarge(nxDecimal increment, unsigned method)
{
    if (!_AreValid(increment) || increment._mantissa == 0 || !_IsMethod(method))
        return;
    const bool negative = _mantissa < 0;
    const std::uint64_t magnitude = _Magnitude();
    const std::uint64_t step = increment._Magnitude();
    std::uint64_t rounded;
    if (_format <= increment._format)
    {
        // The value goes to the increment's scale. Its magnitude there may take a thousand bits; what is needed of it
        // is the rest modulo the step, which is carried along digit by digit, and its lowest 64 bits.
        std::uint64_t rest = magnitude % step;
        for (std::uint64_t places = _format; places < increment._format; ++places)
            rest = TimesTenModulo(rest, step);
        const std::uint64_t scaled = magnitude * Power(increment._format - _format);
        rounded = scaled - rest + (rest > _Threshold(method, negative, step) ? step : 0);
    }
    else
    {
        // The step goes to the value's scale. When it exceeds 64 bits there, it is more than twice the magnitude: the
        // multiples around the value are 0 and the step itself, and 0 is the nearer.
        const std::uint64_t places = _format - increment._format;
        if (places > 19 || step > UINT64_MAX / Power(places))
        {
            const bool away = magnitude != 0 && method == (negative ? NX_ROUNDING_METHOD_DOWN : NX_ROUNDING_METHOD_UP);
            rounded = away ? step : 0;
        }
        else
        {
            const std::uint64_t scaledStep = step * Power(places);
            const std::uint64_t rest = magnitude % scaledStep;
            rounded = (magnitude / scaledStep + (rest > _Threshold(method, negative, scaledStep) ? 1 : 0)) * step;
        }
    }
    _mantissa = _Wrapped(negative ? 0 - rounded : rounded);
    _format = increment._format;
}

nxDecimal nxDecimal::_AddDoubles(nxDecimal left, nxDecimal right)
{
    if (left._AreValid(right))
        left.SetFromDouble(left.GetAsDouble() + right.GetAsDouble(), left._LargerFormat(right));
    return left;
}

nxDecimal nxDecimal::_SubtractDoubles(nxDecimal left, nxDecimal right)
{
    if (left._AreValid(right))
        left.SetFromDouble(left.GetAsDouble() - right.GetAsDouble(), left._LargerFormat(right));
    return left;
}

bool nxDecimal::_AreEqual(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return left._format == right._format;
    return std::fabs(left.GetAsDouble() - right.GetAsDouble()) <= tolerance;
}

bool nxDecimal::_IsLess(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return !left.IsValid() && (right.IsValid() || left._format < right._format);
    const double a = left.GetAsDouble();
    const double b = right.GetAsDouble();
    return !(std::fabs(a - b) <= tolerance) && a < b;
}

bool nxDecimal::EqualsExactly(const nxDecimal& other) const
{
    if (_format == other._format)
        return _mantissa == other._mantissa;
    nxDecimal left = *this;
    nxDecimal right = other;
    left.Normalise(0);
    right.Normalise(0);
    return left._mantissa == right._mantissa && left._format == right._format;
}

std::size_t nxDecimal::GetExactHash() const
{
    nxDecimal number = *this;
    number.Normalise(0);
    std::uint64_t bits = static_cast<std::uint64_t>(number._mantissa) + number._format * 0x9E3779B97F4A7C15;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93;
    return static_cast<std::size_t>(bits ^ (bits >> 32));
}

nxErrorEnum nxDecimal::SetFromString(const std::string& text, char separator)
{
    return SetFromStringView(text, separator);
}

nxErrorEnum nxDecimal::SetFromStringView(std::string_view text, char separator)
{
    const bool negative = !text.empty() && text.front() == '-';
    const bool sign = negative || (!text.empty() && text.front() == '+');
    text.remove_prefix(sign ? 1 : 0);
    std::uint64_t mantissa = 0;
    unsigned char places = 0;
    if (!ReadNumber(text, separator, mantissa, places))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = nxDecimal(_FromParts{}, _Wrapped(negative ? 0 - mantissa : mantissa), places);
    return nxErrorEnum();
}

std::size_t nxDecimal::_GetAsString(char* buffer, char separator, const unsigned char& requestedPlaces) const
{
    if (!IsValid())
        return Copy(buffer, "");
    const std::size_t places = GetDecimalPlaces();
    const std::size_t shown = std::min({std::size_t{requestedPlaces}, places, std::size_t{MaxTextPlaces}});
    const std::uint64_t magnitude = _Magnitude();
    char* out = buffer;
    *out = '-';
    out += _mantissa < 0 ? 1 : 0;
    if (magnitude < 100'000'000 && places < 8)
    {
        // All digits stand in one word: the integer part is its front, from the first digit that is not a leading zero,
        // and the decimals are its end.
        const std::uint64_t digits = nxDigits::Spread(magnitude);
        const std::uint64_t text = digits | nxDigits::AsText;
        const std::uint64_t lastInteger = std::uint64_t{1} << (56 - 8 * places);
        const auto zeros = static_cast<std::size_t>(std::countr_zero(digits | lastInteger)) / 8;
        nxDigits::Store(out, text >> (8 * zeros));
        out += 8 - zeros - places;
        if (shown != 0)
        {
            *out = separator;
            nxDigits::Store(out + 1, text >> (64 - 8 * places));
            out += 1 + shown;
        }
    }
    else
    {
        const std::uint64_t power = Power(places);
        const std::uint64_t whole = power == 0 ? 0 : magnitude / power;
        const std::uint64_t fraction = magnitude - whole * power;
        out = nxDigits::Write(out, whole);
        if (shown != 0)
        {
            // The fraction has less than 20 digits, so that cutting 20 leaves zeros. Twelve digits are always written.
            const std::size_t cut = places - shown;
            const std::uint64_t kept = (cut < 20 ? fraction / Power(cut) : 0) * Power(MaxTextPlaces - shown);
            *out++ = separator;
            nxDigits::WriteFixed<4>(out, kept / 100'000'000);
            nxDigits::WriteFixed<8>(out + 4, kept % 100'000'000);
            out += shown;
        }
    }
    *out = '\0';
    return static_cast<std::size_t>(out - buffer);
}

std::size_t nxDecimal::GetAsString(char* buffer, char separator) const
{
    return _GetAsString(buffer, separator, MaxTextPlaces);
}

void nxDecimal::GetAsString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.assign(buffer, GetAsString(buffer, separator));
}

std::string nxDecimal::GetAsString(char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsString(buffer, separator));
}

void nxDecimal::AppendAsString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsString(buffer, separator));
}

std::string nxDecimal::GetAsTrimmedString(const unsigned char& places, char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, _GetAsString(buffer, separator, places));
}

std::size_t nxDecimal::GetAsLogString(char* buffer, char separator) const
{
    if (IsValid())
        return GetAsString(buffer, separator);
    return Copy(buffer, IsNull() ? nullText : noChangeText);
}

void nxDecimal::GetAsLogString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.assign(buffer, GetAsLogString(buffer, separator));
}

std::string nxDecimal::GetAsLogString(char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsLogString(buffer, separator));
}

void nxDecimal::AppendAsLogString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsLogString(buffer, separator));
}

std::string nxDecimal::GetAsTrimmedLogString(const unsigned char& places, char separator) const
{
    return IsValid() ? GetAsTrimmedString(places, separator) : GetAsLogString(separator);
}

void nxDecimal::Write(nxOStream<nxSimpleAsciiStringWriter>& stream, char separator) const
{
    if (!IsValid())
        return;
    const long long whole = GetIntegerPart();
    if (whole == 0 && _mantissa < 0)
        stream << '-';
    stream << whole;
    if (_format == 0)
        return;
    stream << separator;
    // The fraction has 20 digits at most; what stands before them is zeros, however many.
    constexpr std::string_view zeros = "00000000000000000000000000000000";
    std::size_t places = GetDecimalPlaces();
    while (places > nxDigits::MaxDigits)
    {
        const std::size_t piece = std::min(places - nxDigits::MaxDigits, zeros.size());
        stream << zeros.substr(0, piece);
        places -= piece;
    }
    char digits[nxDigits::MaxDigits];
    nxDigits::WritePadded(digits, GetFractionalPart(), places);
    stream.Write(digits, places);
}

std::ostream& operator<<(std::ostream& stream, const nxDecimal& value)
{
    char buffer[nxDecimal::MaxTextSize];
    return stream << std::string_view(buffer, value.GetAsLogString(buffer, '.'));
}
