#include "core/numeric/nxDecimal.h"

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <ostream>
#include <type_traits>

#include "core/enum/nxValueStatusEnum.h"
#include "core/numeric/internal/nxPriceText.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/inline/nxDigits.h"
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

// Up to eight characters of a number.
struct Piece
{
    std::uint64_t value;      // of the digits
    std::uint64_t separator;  // 1 when one of the characters is the separator, else 0
    std::size_t places;       // how many digits stand behind it; 0 without one
    bool isNumber;            // nothing but digits and at most one separator
};

// Reads what LoadRightAligned() gives. No branch depends on where the separator stands or whether there is one, which
// nobody can predict.
inline Piece ReadPiece(std::uint64_t word, char separator)
{
    const std::uint64_t others = nxDigits::FindNonDigit(word);
    // The lowest bit of the first byte that is no digit; it has to be the separator. Without one, 0, and below it is
    // all.
    const std::uint64_t found = (others & (0 - others)) >> 7;
    const std::uint64_t below = found - 1;
    const std::uint64_t any = (0 - found) >> 63;
    const std::uint64_t wanted = found * static_cast<unsigned char>(separator ^ '0');
    const bool isSeparator = (word & (found * 0xFF)) == wanted;
    // Close the gap; anything else that is no digit stays.
    const std::uint64_t digits = (word & (~below << 8)) | ((word & below) << (8 * any));
    const int position = std::countr_zero(others | (std::uint64_t{1} << 63)) / 8;
    return {nxDigits::Gather(digits), any, static_cast<std::size_t>(7 - position),
            isSeparator && nxDigits::FindNonDigit(digits) == 0};
}

// Reads digits with at most one separator among them, any number of them.
bool ReadPieces(std::string_view text, char separator, std::uint64_t& mantissa, std::size_t& places)
{
    std::size_t digits = 0;
    bool separatorSeen = false;
    while (!text.empty())
    {
        const std::size_t count = std::min(text.size(), std::size_t{8});
        const Piece piece = ReadPiece(nxDigits::LoadRightAligned(text.data(), count), separator);
        if (!piece.isNumber || (piece.separator != 0 && separatorSeen))
            return false;
        const std::size_t pieceDigits = count - piece.separator;
        mantissa = mantissa * nxPowersOfTen::GetInteger(pieceDigits) + piece.value;
        digits += pieceDigits;
        places += separatorSeen ? pieceDigits : piece.places;
        separatorSeen = separatorSeen || piece.separator != 0;
        text.remove_prefix(count);
    }
    return digits != 0;
}

// The text of a number whose digits all stand in one word: the integer part is its front, from the first digit that is
// not a leading zero, and the decimals are its end. `magnitude` is below 10^8, `places` below 8, and `shown` not above
// it.
inline char* PrintShort(char* out, std::uint64_t magnitude, std::size_t places, std::size_t shown, char separator)
{
    const std::uint64_t digits = nxDigits::Spread(magnitude);
    const std::uint64_t text = digits | nxDigits::AsText;
    const std::size_t beforeDecimals = 56 - 8 * places;
    const auto zeros = static_cast<std::size_t>(std::countr_zero(digits | (std::uint64_t{1} << beforeDecimals)));
    nxDigits::Store(out, text >> (zeros & ~std::size_t{7}));
    out += 8 - zeros / 8 - places;
    *out = separator;  // overwritten when no decimals are shown
    nxDigits::Store(out + 1, text >> 8 >> beforeDecimals);
    return out + (shown != 0 ? 1 + shown : 0);
}

// The same for every number. Writes 33 bytes at most.
[[gnu::noinline]] char* PrintLong(char* out, std::uint64_t magnitude, std::size_t places, std::size_t shown,
                                  char separator)
{
    const std::uint64_t power = nxPowersOfTen::GetInteger(places);
    const std::uint64_t whole = power == 0 ? 0 : magnitude / power;
    const std::uint64_t fraction = magnitude - whole * power;
    out = nxDigits::Write(out, whole);
    if (shown == 0)
        return out;
    // The fraction has less than 20 digits, so that cutting 20 leaves zeros. Twelve digits are always written.
    const std::size_t cut = places - shown;
    const std::uint64_t kept = (cut < 20 ? fraction / nxPowersOfTen::GetInteger(cut) : 0) *
                               nxPowersOfTen::GetInteger(nxDecimal::MaxTextPlaces - shown);
    *out++ = separator;
    nxDigits::WriteFixed<4>(out, kept / 100'000'000);
    nxDigits::WriteFixed<8>(out + 4, kept % 100'000'000);
    return out + shown;
}

// The text of a valid number with its sign and a terminator.
inline std::size_t Print(char* buffer, bool negative, std::uint64_t magnitude, std::size_t places, std::size_t shown,
                         char separator)
{
    *buffer = '-';
    char* const out = buffer + (negative ? 1 : 0);
    char* const end = magnitude < 100'000'000 && places < 8 ? PrintShort(out, magnitude, places, shown, separator)
                                                            : PrintLong(out, magnitude, places, shown, separator);
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
}

// Rounds to the nearest while it lives, whatever direction the thread is set to. What goes in and comes out passes through
// nxDoubleHelper::Rounded(), across which no operation moves.
class NearestRounding
{
public:
    NearestRounding()
    {
        if (nxDoubleHelper::RoundsToNearest()) [[likely]]
            return;
        _direction = std::fegetround();
        std::fesetround(FE_TONEAREST);
    }
    ~NearestRounding()
    {
        if (_direction != FE_TONEAREST) [[unlikely]]
            std::fesetround(_direction);
    }
    NearestRounding(const NearestRounding&) = delete;
    NearestRounding& operator=(const NearestRounding&) = delete;

private:
    int _direction = FE_TONEAREST;
};

// Out of line, so that it costs those nothing who round to the nearest anyway.
template <class Result>
[[gnu::noinline]] Result RoundedToNearest(Result (*operation)(nxDecimal, nxDecimal), nxDecimal left, nxDecimal right)
{
    const NearestRounding rounding;
    return operation(left, right);
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

nxDecimal::nxDecimal(long long numerator, long long denominator, unsigned char places)
{
    const NearestRounding rounding;
    const double dividend = nxDoubleHelper::Rounded(static_cast<double>(numerator));
    _SetFromNearest(nxDoubleHelper::Rounded(dividend / static_cast<double>(denominator)), places);
}

nxDecimal nxDecimal::_FromAnyDouble(double number, unsigned char places)
{
    const NearestRounding rounding;
    const long long whole = nxDoubleHelper::ToInteger(number);
    const double fraction = nxDoubleHelper::Rounded(number) - static_cast<double>(whole);
    const double scaled = nxDoubleHelper::Rounded(fraction * nxPowersOfTen::GetDouble(places));
    double nearest = std::floor(scaled);
    if (scaled - nearest >= 0.5)
        nearest = std::ceil(scaled);
    const std::uint64_t mantissa = static_cast<std::uint64_t>(whole) * nxPowersOfTen::GetInteger(places) +
                                   static_cast<std::uint64_t>(nxDoubleHelper::ToInteger(nearest));
    return nxDecimal(_FromParts{}, _Wrapped(mantissa), places);
}

void nxDecimal::SetDecimalPlaces(const unsigned char& places, bool onlyDropZeros)
{
    if (!IsValid())
        return;
    const unsigned char wanted = places;
    const unsigned char present = GetDecimalPlaces();
    if (wanted >= present)
    {
        const std::uint64_t power = nxPowersOfTen::GetInteger(std::size_t{wanted} - present);
        *this = nxDecimal(_FromParts{}, _Wrapped(static_cast<std::uint64_t>(_mantissa) * power), wanted);
    }
    else if (onlyDropZeros)
        Normalise(wanted);
    else
    {
        // Nothing is left of 19 digits when 19 are cut.
        const auto cut = static_cast<std::size_t>(present - wanted);
        *this = nxDecimal(_FromParts{},
                          cut < 19 ? _mantissa / static_cast<long long>(nxPowersOfTen::GetInteger(cut)) : 0, wanted);
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

nxDecimal nxDecimal::_RoundLarge(nxDecimal value, nxDecimal increment, unsigned method)
{
    if (!value._AreValid(increment) || increment._mantissa == 0 || !_IsMethod(method))
        return value;
    const bool negative = value._mantissa < 0;
    const std::uint64_t magnitude = value._Magnitude();
    const std::uint64_t step = increment._Magnitude();
    std::uint64_t rounded;
    if (value._format <= increment._format)
    {
        // The value goes to the increment's scale. Its magnitude there may take a thousand bits; what is needed of it
        // is the rest modulo the step, which is carried along digit by digit, and its lowest 64 bits.
        std::uint64_t rest = magnitude % step;
        for (std::uint64_t places = value._format; places < increment._format; ++places)
            rest = TimesTenModulo(rest, step);
        const std::uint64_t scaled = magnitude * nxPowersOfTen::GetInteger(increment._format - value._format);
        rounded = scaled - rest + (rest > _Threshold(method, negative, step) ? step : 0);
    }
    else
    {
        // The step goes to the value's scale. When it exceeds 64 bits there, it is more than twice the magnitude: the
        // multiples around the value are 0 and the step itself, and 0 is the nearer.
        const std::uint64_t places = value._format - increment._format;
        if (places > 19 || step > UINT64_MAX / nxPowersOfTen::GetInteger(places))
        {
            const bool away = magnitude != 0 && method == (negative ? NX_ROUNDING_METHOD_DOWN : NX_ROUNDING_METHOD_UP);
            rounded = away ? step : 0;
        }
        else
        {
            const std::uint64_t scaledStep = step * nxPowersOfTen::GetInteger(places);
            const std::uint64_t rest = magnitude % scaledStep;
            rounded = (magnitude / scaledStep + (rest > _Threshold(method, negative, scaledStep) ? 1 : 0)) * step;
        }
    }
    return nxDecimal(_FromParts{}, _Wrapped(negative ? 0 - rounded : rounded), increment.GetDecimalPlaces());
}

nxDecimal nxDecimal::_AddDoubles(nxDecimal left, nxDecimal right)
{
    const NearestRounding rounding;
    if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() + right.GetAsDouble()),
                             left._LargerFormat(right));
    return left;
}

nxDecimal nxDecimal::_SubtractDoubles(nxDecimal left, nxDecimal right)
{
    const NearestRounding rounding;
    if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() - right.GetAsDouble()),
                             left._LargerFormat(right));
    return left;
}

nxDecimal nxDecimal::_MultiplyDoubles(nxDecimal left, nxDecimal right)
{
    const NearestRounding rounding;
    return left *= right;
}

nxDecimal nxDecimal::_DivideDoubles(nxDecimal left, nxDecimal right)
{
    const NearestRounding rounding;
    return left /= right;
}

bool nxDecimal::_AreEqual(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return left._format == right._format;
    if (!nxDoubleHelper::RoundsToNearest()) [[unlikely]]
        return RoundedToNearest(_AreEqual, left, right);
    return std::fabs(nxDoubleHelper::Rounded(left._AsDouble() - right._AsDouble())) <= tolerance;
}

bool nxDecimal::_IsLess(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return !left.IsValid() && (right.IsValid() || left._format < right._format);
    if (!nxDoubleHelper::RoundsToNearest()) [[unlikely]]
        return RoundedToNearest(_IsLess, left, right);
    const double a = left._AsDouble();
    const double b = right._AsDouble();
    return !(std::fabs(nxDoubleHelper::Rounded(a - b)) <= tolerance) && a < b;
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

bool nxDecimal::_ReadAnyString(std::string_view text, char separator, nxDecimal& value)
{
    const bool negative = !text.empty() && text.front() == '-';
    text.remove_prefix(negative || (!text.empty() && text.front() == '+') ? 1 : 0);
    std::uint64_t mantissa = 0;
    std::size_t places = 0;
    if (!nxPriceText::Parse(text.data(), text.size(), separator, mantissa, places) &&
        !ReadPieces(text, separator, mantissa, places))
        return false;
    value = nxDecimal(_FromParts{}, _Wrapped(negative ? 0 - mantissa : mantissa), static_cast<unsigned char>(places));
    return true;
}

std::size_t nxDecimal::_GetAsString(char* buffer, char separator, const unsigned char& places) const
{
    if (!IsValid())
        return Copy(buffer, "");
    const std::size_t shown =
        std::min({std::size_t{places}, std::size_t{GetDecimalPlaces()}, std::size_t{MaxTextPlaces}});
    return Print(buffer, IsNegative(), _Magnitude(), GetDecimalPlaces(), shown, separator);
}

std::size_t nxDecimal::GetAsString(char* buffer, char separator) const
{
    if (!IsValid())
        return Copy(buffer, "");
    const std::size_t places = GetDecimalPlaces();
    return Print(buffer, IsNegative(), _Magnitude(), places, std::min(places, std::size_t{MaxTextPlaces}), separator);
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
