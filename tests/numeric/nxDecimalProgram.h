// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_NUMERIC_NXDECIMALPROGRAM_H
#define TESTS_NUMERIC_NXDECIMALPROGRAM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/nxValueStatusEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"
#include "tests/numeric/nxDecimalOracle.h"

/// Reads bytes as a program of decimal operations on eight registers, runs it on nxDecimal and on its oracle side by
/// side, and compares every result. Any bytes are a program.
class nxDecimalProgram
{
public:
    nxDecimalProgram(const std::uint8_t* bytes, std::size_t size) : _bytes(bytes), _size(size) {}

    /// @return whether all results agreed; GetFailure() names the first one that did not.
    bool Run()
    {
        while (_at < _size && _failure.empty())
            Step();
        return _failure.empty();
    }
    /// Operations run; loading a register counts as none.
    std::size_t GetOperations() const { return _operations; }
    const std::string& GetFailure() const { return _failure; }

private:
    struct Register
    {
        nxDecimal value;
        nxDecimalOracle model;

        friend std::ostream& operator<<(std::ostream& out, const Register& r)
        {
            return out << '(' << nxDecimalOracle(r.value) << ") oracle (" << r.model << ')';
        }
    };

    template <class T>
    T Take()
    {
        std::array<unsigned char, sizeof(T)> raw{};
        const std::size_t count = std::min(raw.size(), _size - _at);
        std::memcpy(raw.data(), _bytes + _at, count);
        _at += count;
        T value;
        std::memcpy(&value, raw.data(), sizeof value);
        return value;
    }
    std::uint8_t TakeByte() { return Take<std::uint8_t>(); }

    // Half of all numbers look like prices; the others lie near the limits that the code knows.
    long long TakeMantissa()
    {
        const std::uint8_t kind = TakeByte();
        const long long raw = Take<long long>();
        static constexpr long long limits[] = {
            0,         1,         5,         50,        99'999'999, 100'000'000, 9'999'999'999'999'999,
            1LL << 31, 1LL << 48, 1LL << 49, 1LL << 52, 1LL << 53,  1LL << 62,   1'000'000'000'000'000'000,
            INT64_MAX, INT64_MIN};
        switch (kind % 8)
        {
            case 0:
                return raw;
            case 1:  // every length
                return raw >> (static_cast<unsigned>(kind) / 8 * 2);
            case 2:
            case 3:  // next to a limit, or to a tenth of it, a hundredth, ...
            {
                long long near = limits[(kind >> 3) % 16];
                for (int n = static_cast<int>((raw >> 8) & 15); n > 0 && near > 9; --n)
                    near /= 10;
                near = nxDecimalOracle::Signed(nxDecimalOracle::Bits(near) + static_cast<std::uint64_t>(raw & 3) - 1);
                return (raw & 4) != 0 && near != INT64_MIN ? -near : near;
            }
            default:
                return raw % 1'000'000;
        }
    }
    unsigned char TakePlaces()
    {
        const std::uint8_t kind = TakeByte();
        if (kind < 192)
            return kind % 8;
        return kind < 240 ? kind % 24 : TakeByte();
    }
    double TakeDouble()
    {
        const std::uint8_t kind = TakeByte();
        const auto raw = Take<long long>();
        using Limits = std::numeric_limits<double>;
        constexpr double none = Limits::quiet_NaN(), infinity = Limits::infinity(), tiny = Limits::denorm_min();
        static constexpr double odd[] = {
            none, infinity,     -infinity,           9223372036854775807.0, -9223372036854775808.0,
            1e19, -1e19,        0.49999999999999994, -0.49999999999999994,  -0.0,
            tiny, Limits::max()};
        double number;
        switch (kind % 4)
        {
            case 0:  // any bit pattern
                std::memcpy(&number, &raw, sizeof number);
                return number;
            case 1:
                return odd[(kind >> 2) % 12];
            case 2:  // ties, and the numbers beside them
                number = static_cast<double>((raw >> 8) % 2'000'001) / 2 / static_cast<double>(1 << (raw & 15));
                if ((raw & 16) != 0)
                    number = std::nextafter(number, (raw & 32) != 0 ? 1e300 : -1e300);
                return number;
            default:
                return static_cast<double>(raw % 100'000'000) / 10000;
        }
    }
    char TakeSeparator()
    {
        const std::uint8_t kind = TakeByte();
        return kind < 160 ? '.' : kind < 240 ? ',' : static_cast<char>(TakeByte());
    }
    nxEnumValue TakeMethod() { return static_cast<nxEnumValue>(NX_ROUNDING_METHOD_DOWN + TakeByte() % 5); }
    std::string TakeText(char separator)
    {
        static constexpr char letters[] = "0123456789012345678901234567890123456789+-x /:.,\xB5\1\2\3";
        const std::uint8_t shape = TakeByte();
        // The longest ones have more places than a byte counts.
        std::string text(shape < 250 ? shape % 24U : (shape - 249U) * 60, '0');
        for (char& c : text)
            c = letters[TakeByte() % (shape & 16 ? 40 : sizeof letters)];
        if (shape % 3 != 0 && !text.empty())
            text[TakeByte() % text.size()] = separator;
        if (shape % 5 == 0)
            text.insert(0, 1, shape & 1 ? '-' : '+');
        return text;
    }

    void Step()
    {
        const std::uint8_t code = TakeByte();
        const std::uint8_t where = TakeByte();
        Register& a = _registers[where % 8];
        Register& b = _registers[where / 8 % 8];
        const Register before = a;
        const Register operand = b;
        const int operation = code % _operationCount;
        if (code >= 240)
        {
            ++_operations;
            OperateExactly(code - 240U, a, b);
        }
        else if (operation < _loads)
            Load(operation, a);
        else
        {
            ++_operations;
            Operate(operation - _loads, a, b);
        }
        Expect("status, mantissa and places", true, a.model.Matches(a.value));
        if (_failure.empty())
            return;
        std::ostringstream text;
        text << _failure << "; operation " << operation - _loads << " on " << before << " and " << operand << " gave "
             << a << " and " << b;
        _failure = text.str();
    }

    void Load(int operation, Register& a)
    {
        if (operation != 0)
        {
            const long long mantissa = TakeMantissa();
            const unsigned char places = TakePlaces();
            a = {nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, places), {mantissa, places}};
        }
        else if (const std::uint8_t kind = TakeByte(); kind % 4 != 0)
            a = {nxDecimal::GetMaximumDecimal(), {INT64_MAX, 0}};
        else if ((kind & 8) != 0)
            a = {nxDecimal::GetNullDecimal(), nxDecimalOracle(NX_VALUE_STATUS_NULL)};
        else
            a = {nxDecimal(nxNoChangeInitalizer{}), nxDecimalOracle(NX_VALUE_STATUS_NO_CHANGE)};
    }

    void Operate(int operation, Register& a, Register& b)
    {
        switch (operation)
        {
            case 0:
            case 1:
            case 2:
            case 3:
                a.model.Calculate("+-*/"[operation], nxDecimalOracle(b.model));
                operation == 0   ? a.value += b.value
                : operation == 1 ? a.value -= b.value
                : operation == 2 ? a.value *= b.value
                                 : a.value /= b.value;
                break;
            case 4:
            case 5:
            {
                const nxEnumValue method = TakeMethod();
                a.value.Round(b.value, nxRoundingMethodEnum(method));
                a.model.Round(nxDecimalOracle(b.model), method);
                break;
            }
            case 6:
                Compare(a, b);
                break;
            case 7:
            {
                const unsigned char places = TakePlaces();
                const bool onlyDropZeros = (TakeByte() & 1) != 0;
                InBoth(a, [=](auto& number) { number.SetDecimalPlaces(places, onlyDropZeros); });
                break;
            }
            case 8:
                InBoth(a, [minimum = TakePlaces()](auto& number) { number.Normalise(minimum); });
                break;
            case 9:
            {
                const double from = TakeDouble();
                InBoth(a, [from, places = TakePlaces()](auto& number) { number.SetFromDouble(from, places); });
                break;
            }
            case 10:
            {
                const char separator = TakeSeparator();
                const std::string text = TakeText(separator);
                const bool read = a.value.SetFromString(text, separator).IsOK();
                Expect("error of a text", read, a.model.SetFromText(text, separator));
                break;
            }
            case 11:
                Print(a);
                break;
            case 12:
                // Both work in place; of three changes one is left.
                -(-a.value);
                a.value.InvertSign();
                a.model.Negate();
                break;
            case 13:
            {
                nxDecimal magnitude = a.value;
                magnitude.Abs();
                Expect("Abs in place", true, a.model.Absolute().Matches(magnitude));
                const bool isValid = a.model.IsValid();
                Expect("IsZero", isValid && a.model.mantissa == 0, a.value.IsZero());
                Expect("IsPositive", isValid && a.model.mantissa > 0, a.value.IsPositive());
                Expect("IsNegative", isValid && a.model.mantissa < 0, a.value.IsNegative());
                Expect("IsNoChange", a.model.status == NX_VALUE_STATUS_NO_CHANGE, a.value.IsNoChange());
                Expect("Abs", true, a.model.Absolute().Matches(nxDecimal::Abs(a.value)));
                Expect("integer part", a.model.IntegerPart(), a.value.GetIntegerPart());
                Expect("fraction", a.model.Fraction(), std::uint64_t{a.value.GetFractionalPart()});
                Expect("GetAsDouble", true,
                       a.model.AsDouble() == a.value.GetAsDouble() ||
                           (std::isnan(a.model.AsDouble()) && std::isnan(a.value.GetAsDouble())));
                break;
            }
            case 14:
            {
                const long long whole = TakeMantissa();
                const unsigned char places = TakePlaces();
                a.value = nxDecimal(whole, places);
                a.model = {nxDecimalOracle::Signed(nxDecimalOracle::Bits(whole) * nxDecimalOracle::Power(places)),
                           places};
                break;
            }
            default:
            {
                const long long numerator = TakeMantissa();
                const long long denominator = TakeMantissa();
                const unsigned char places = TakePlaces();
                a.value = nxDecimal(numerator, denominator, places);
                a.model.SetFromDouble(static_cast<double>(numerator) / static_cast<double>(denominator), places);
            }
        }
    }

    void OperateExactly(unsigned operation, Register& a, const Register& b)
    {
        const nxDecimalOracle other(b.model);
        const unsigned char places = TakePlaces();
        const nxEnumValue method = TakeMethod();
        const nxRoundingMethodEnum rounding(method);
        const bool isOdd = operation % 2 != 0;
        const auto expect = [this](const char* what, const nxErrorEnum& expected, const nxErrorEnum& actual)
        { Expect(what, expected, actual); };
        switch (operation / 2)
        {
            case 0:
                return isOdd ? expect("SubtractExact", a.model.AddExact(other, -1), a.value.SubtractExact(b.value))
                             : expect("AddExact", a.model.AddExact(other, 1), a.value.AddExact(b.value));
            case 1:
                return expect("MultiplyExact", a.model.MultiplyExact(other), a.value.MultiplyExact(b.value));
            case 2:
                return expect("rounded MultiplyExact", a.model.RoundExact('*', other, places, method),
                              a.value.MultiplyExact(b.value, places, rounding));
            case 3:
                return expect("DivideExact", a.model.RoundExact('/', other, places, method),
                              a.value.DivideExact(b.value, places, rounding));
            case 4:
                return isOdd ? expect("RoundExact", a.model.RoundExact('|', other, 0, method),
                                      a.value.RoundExact(b.value, rounding))
                             : expect("SetDecimalPlacesExact", a.model.SetDecimalPlacesExact(places),
                                      a.value.SetDecimalPlacesExact(places));
            case 5:
            {
                const char separator = TakeSeparator();
                const std::string text = TakeText(separator);
                return expect("SetFromStringExact", a.model.SetFromTextExact(text, separator),
                              a.value.SetFromStringExact(text, separator));
            }
            case 6:
                return ConvertExactly(a.value, a.model);
            default:
                Expect("CompareExact", a.model.CompareExact(b.model), a.value.CompareExact(b.value));
                Expect("GetAsExactString", a.model.ExactText('.'), a.value.GetAsExactString('.'));
        }
    }

    void ConvertExactly(nxDecimal value, nxDecimalOracle model)
    {
        value.Normalise(0);
        double number = 0;
        nxDecimal back;
        const bool isGiven = value.GetAsDoubleExact(number).IsOK();
        const bool isShort = model.IsValid() && model.places <= 18 && model.Magnitude() < 1'000'000'000'000'000;
        Expect("GetAsDoubleExact", isGiven || isShort, isGiven);
        if (isGiven && back.SetFromDoubleExact(number, value.GetDecimalPlaces()).IsOK())
            Expect("number read back", true, back.EqualsExactly(value));
        long long whole = 0;
        Expect("GetAsIntegerExact", model.SetDecimalPlacesExact(0), value.GetAsIntegerExact(whole));
        Expect("integer", model.IsValid() && model.places == 0 ? model.mantissa : 0, whole);
        // A result that fits is that of SetFromDouble(), and one that is refused lies beyond 63 bits.
        const double from = TakeDouble();
        const unsigned char places = TakePlaces();
        model.SetFromDouble(from, places);
        const bool isTaken = back.SetFromDoubleExact(from, places).IsOK();
        const long double units = from * std::pow(10.0L, places);
        Expect("SetFromDoubleExact", places <= 18 && units >= -0x1p63L && units < 0x1p63L, isTaken);
        Expect("double", true, !isTaken || model.Matches(back));
    }

    template <class Action>
    static void InBoth(Register& a, const Action& action)
    {
        action(a.value);
        action(a.model);
    }

    void Compare(const Register& a, const Register& b)
    {
        const bool equal = a.model.Equals(b.model);
        const bool less = a.model.IsLessThan(b.model);
        Expect("==", equal, a.value == b.value);
        Expect("!=", !equal, a.value != b.value);
        Expect("<", less, a.value < b.value);
        Expect("<=", equal || less, a.value <= b.value);
        Expect(">", !equal && !less, a.value > b.value);
        Expect(">=", !less, a.value >= b.value);
        const bool exactly = a.model.CompareExact(b.model) == 0;
        Expect("EqualsExactly", exactly, a.value.EqualsExactly(b.value));
        if (exactly)
            Expect("GetExactHash", a.value.GetExactHash(), b.value.GetExactHash());
        const bool takeMin = !a.model.IsValid() || (b.model.IsValid() && b.model.IsLessThan(a.model) && !equal);
        Expect("GetMin", true, (takeMin ? b : a).model.Matches(nxDecimal::GetMin(a.value, b.value)));
        const bool takeMax = !a.model.IsValid() || (b.model.IsValid() && less);
        Expect("GetMax", true, (takeMax ? b : a).model.Matches(nxDecimal::GetMax(a.value, b.value)));
    }

    void Print(const Register& a)
    {
        const char separator = TakeSeparator();
        const unsigned char places = TakePlaces();
        // The bytes after the promised size must stay as they are.
        char buffer[nxDecimal::MaxTextSize + 8];
        std::memset(buffer, '#', sizeof buffer);
        const std::size_t length = a.value._GetAsString(buffer, separator, places);
        Expect("_GetAsString", a.model.Text(separator, places), std::string(buffer, length));
        Expect("terminator", true, buffer[length] == '\0');
        Expect("buffer", true, std::string_view(buffer + nxDecimal::MaxTextSize, 8) == "########");
        const std::string plain = a.model.Text(separator, 255), log = a.model.LogText(separator, 255);
        Expect("GetAsString", plain, a.value.GetAsString(separator));
        Expect("GetAsLogString", log, a.value.GetAsLogString(separator));
        Expect("GetAsString to a buffer", plain, std::string(buffer, a.value.GetAsString(buffer, separator)));
        Expect("GetAsLogString to a buffer", log, std::string(buffer, a.value.GetAsLogString(buffer, separator)));
        std::string text = "old";
        a.value.GetAsString(text, separator);
        a.value.AppendAsString(text, separator);
        a.value.AppendAsLogString(text, separator);
        Expect("appended texts", plain + plain + log, text);
        a.value.GetAsLogString(text, separator);
        Expect("GetAsLogString to a text", log, text);
        Expect("GetAsTrimmedString", a.model.Text(separator, places), a.value.GetAsTrimmedString(places, separator));
        Expect("GetAsTrimmedLogString", a.model.LogText(separator, places),
               a.value.GetAsTrimmedLogString(places, separator));
        nxOStream<nxSimpleAsciiStringWriter> stream;
        a.value.Write(stream, separator);
        Expect("Write", a.model.Written(separator), stream.GetWriter().GetText());
    }

    template <class T, class U>
    void Expect(const char* what, const T& expected, const U& actual)
    {
        if (expected == actual || !_failure.empty())
            return;
        std::ostringstream text;
        text << what << ": expected " << expected << ", got " << actual;
        _failure = text.str();
    }
    static constexpr int _loads = 8;
    static constexpr int _operationCount = _loads + 16;

    const std::uint8_t* _bytes;
    std::size_t _size;
    std::size_t _at = 0;
    std::size_t _operations = 0;
    std::array<Register, 8> _registers{};
    std::string _failure;
};

#endif
