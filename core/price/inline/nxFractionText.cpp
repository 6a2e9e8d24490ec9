// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxFractionText.h"

#include <algorithm>
#include <cstring>

#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/text/inline/nxDigits.h"

namespace
{
bool AreFractionDigits(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return '0' <= c && c <= '9'; });
}

// Reads a text of digits; false when 64 bits do not hold the number.
bool ReadFractionDigits(std::string_view text, std::uint64_t& number)
{
    const char* const end = text.data() + text.size();
    return nxDigits::Parse(text.data(), end, number) && nxDigits::FitsIn64Bits(text.data(), end);
}

// How often the factor divides the number, which loses these factors.
unsigned char CountFactors(unsigned& number, unsigned factor)
{
    unsigned char count = 0;
    for (; number % factor == 0; number /= factor)
        ++count;
    return count;
}

// Other characters could be taken for a digit, a sign or a part of a notation's name.
bool IsMark(char mark)
{
    constexpr std::string_view marks = " !\"#$%&'(),-.:;<=>?@[\\]^_`{|}~";
    return marks.find(mark) != std::string_view::npos;
}
}  // namespace

nxFractionText::nxFractionText(unsigned denominator, unsigned parts, unsigned char partDigits, Digits digits, char mark)
    : _denominator(denominator), _parts(parts), _partDigits(partDigits), _digits(digits), _mark(mark)
{
    const bool isDivided = digits == Digits::Cut || digits == Digits::Numerals;
    const bool hasDigits = isDivided ? parts >= 2 && partDigits >= 1 && partDigits <= MaxPartDigits
                                     : digits == Digits::None && parts == 1 && partDigits == 0;
    if (!IsMark(mark) || !hasDigits || !_MakeParts() || !_MakeUnit())
        return;
    _MakeQuickForms();
    _MakeStepTexts();
}

bool nxFractionText::_MakeUnit()
{
    if (_denominator < 2 || _denominator > MaxSteps || _parts > MaxSteps || _denominator * _parts > MaxSteps)
        return false;
    unsigned others = _denominator * _parts;
    const unsigned char twos = CountFactors(others, 2);
    const unsigned char fives = CountFactors(others, 5);
    if (others != 1)
        return false;
    _places = std::max(twos, fives);
    _power = nxPowersOfTen::GetInteger(_places);
    _unit = static_cast<std::uint32_t>(_power / (_denominator * _parts));
    _byUnit = nxReciprocal::Of(_unit);
    _bySteps = nxReciprocal::Of(_denominator * _parts);
    for (unsigned largest = _denominator - 1; largest != 0; largest /= 10)
        ++_width;
    return true;
}

nxFractionText::_Form nxFractionText::_MakeForm(std::size_t count) const
{
    _Form form;
    form.count = count;
    const std::size_t markBit = 56 - 8 * count;
    form.markMask = std::uint64_t{0xFF} << markBit;
    form.mark = std::uint64_t{static_cast<unsigned char>(_mark ^ '0')} << markBit;
    form.beforeMark = (std::uint64_t{1} << markBit) - 1;
    form.tens = nxPowersOfTen::GetInteger(count);
    form.byTens = nxReciprocal::Of(form.tens);
    form.missingTens = nxPowersOfTen::GetInteger(_width + _partDigits - count);
    return form;
}

// More digits would need a large table.
void nxFractionText::_MakeQuickForms()
{
    const std::size_t count = std::size_t{_width} + _partDigits;
    if (count > _mostQuickDigits)
        return;
    _full = _MakeForm(count);
    _short = _MakeForm(_width);
    if (_digits == Digits::Numerals && _partDigits == 1 && _parts % 2 == 0)
        _half = _parts / 2;
    _stepOf.assign(_full.tens, _noStep);
    for (std::uint32_t numerator = 0; numerator < _denominator; ++numerator)
        for (std::uint32_t part = 0; part < _parts; ++part)
            _stepOf[numerator * _partPower + _GetPartDigits(part)] =
                static_cast<std::uint16_t>(numerator * _parts + part);
}

// Fills the table; false when two parts have the same digits, or a part has too many.
bool nxFractionText::_MakeParts()
{
    std::fill(std::begin(_partOf), std::end(_partOf), _noPart);
    _partPower = static_cast<std::uint32_t>(nxPowersOfTen::GetInteger(_partDigits));
    if (_parts == 0 || _parts > _partPower)
        return false;
    for (std::uint32_t part = 0; part < _parts; ++part)
    {
        unsigned char& entry = _partOf[_GetPartDigits(part)];
        if (entry != _noPart)
            return false;
        entry = static_cast<unsigned char>(part);
    }
    return true;
}

std::uint32_t nxFractionText::_GetPartDigits(std::uint32_t part) const
{
    return _digits == Digits::Cut ? part * _partPower / _parts : part;
}

// The mark, five digits at most and a terminator leave the last byte free.
void nxFractionText::_MakeStepTexts()
{
    _stepTexts.assign(_denominator * _parts * _stepTextSize, '\0');
    char* text = _stepTexts.data();
    for (std::uint32_t numerator = 0; numerator < _denominator; ++numerator)
        for (std::uint32_t part = 0; part < _parts; ++part, text += _stepTextSize)
        {
            const bool isHalf = _digits == Digits::Numerals && 2 * part == _parts;
            *text = _mark;
            nxDigits::WritePadded(text + 1, numerator, _width);
            if (isHalf)
                text[1 + _width] = '+';
            else
                nxDigits::WritePadded(text + 1 + _width, _GetPartDigits(part), _partDigits);
            text[_stepTextSize - 1] = static_cast<char>(1 + _width + (isHalf ? 1 : _partDigits));
        }
}

nxDecimal nxFractionText::GetStep() const
{
    return IsValid() ? nxDecimal::ConstructFromValueAndDecimalPlaces(_unit, _places) : nxDecimal::GetNullDecimal();
}

// The form is judged before the size.
nxErrorEnum nxFractionText::_ReadSlowly(std::string_view text, nxDecimal& price, char separator) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    const bool isNegative = !text.empty() && text.front() == '-';
    text.remove_prefix(isNegative || (!text.empty() && text.front() == '+') ? 1 : 0);
    _Pieces pieces;
    if (!_Split(text, separator, pieces))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    std::uint64_t whole = 0, fraction = 0;
    unsigned char places = 0;
    if (!ReadFractionDigits(pieces.whole, whole) || !_GetFraction(pieces, fraction, places))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const nxUnsignedWide magnitude = nxUnsignedWide{whole} * nxPowersOfTen::GetInteger(places) + fraction;
    if (magnitude > nxUnsignedWide{INT64_MAX} + (isNegative ? 1 : 0))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const auto bits = static_cast<std::uint64_t>(magnitude);
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(nxDecimalQuick::Wrap(isNegative ? 0 - bits : bits), places);
    return nxErrorEnum();
}

bool nxFractionText::_Split(std::string_view text, char separator, _Pieces& pieces) const
{
    const std::size_t mark = text.find(_mark);
    if (mark == std::string_view::npos || text.size() - mark - 1 < _width)
        return false;
    pieces.whole = text.substr(0, mark);
    pieces.numerator = text.substr(mark + 1, _width);
    const std::string_view rest = text.substr(mark + 1 + _width);
    if (!AreFractionDigits(pieces.whole) || !AreFractionDigits(pieces.numerator))
        return false;
    if (rest.empty() || _IsPart(rest))
    {
        pieces.part = rest;
        return true;
    }
    pieces.decimals = rest.substr(1);
    return rest.front() == separator && AreFractionDigits(pieces.decimals);
}

bool nxFractionText::_IsPart(std::string_view text) const
{
    return (text.size() == _partDigits && AreFractionDigits(text)) || (_digits == Digits::Numerals && text == "+");
}

bool nxFractionText::_FindPart(std::string_view text, std::uint32_t& part) const
{
    part = 0;
    if (text.empty())
        return true;
    if (text == "+")
    {
        part = _parts / 2;
        return _parts % 2 == 0;
    }
    std::uint64_t digits = 0;
    nxDigits::Parse(text.data(), text.data() + text.size(), digits);
    part = _partOf[digits];
    return part != _noPart;
}

// The fraction in units of 10^-places, at the places of the notation or more.
bool nxFractionText::_GetFraction(const _Pieces& pieces, std::uint64_t& fraction, unsigned char& places) const
{
    std::uint64_t numerator = 0;
    if (!ReadFractionDigits(pieces.numerator, numerator) || numerator >= _denominator)
        return false;
    if (pieces.decimals.empty())
    {
        std::uint32_t part = 0;
        places = _places;
        if (!_FindPart(pieces.part, part))
            return false;
        fraction = (numerator * _parts + part) * _unit;
        return true;
    }
    const std::size_t count = pieces.decimals.find_last_not_of('0') + 1;
    std::uint64_t decimals = 0;
    if (count > nxDecimal::MaxExactPlaces ||
        (count != 0 && !ReadFractionDigits(pieces.decimals.substr(0, count), decimals)))
        return false;
    // At the largest number of places: below 1024 * 10^18.
    const nxUnsignedWide scaled = (nxUnsignedWide{numerator} * nxPowersOfTen::GetInteger(count) + decimals) *
                                  nxPowersOfTen::GetInteger(nxDecimal::MaxExactPlaces - count);
    if (scaled % _denominator != 0)
        return false;
    fraction = static_cast<std::uint64_t>(scaled / _denominator);
    for (places = nxDecimal::MaxExactPlaces; places > _places && fraction % 10 == 0; --places)
        fraction /= 10;
    return true;
}

std::size_t nxFractionText::Write(char* buffer, const nxDecimal& price, char separator) const
{
    std::uint64_t whole = 0, steps = 0;
    if (!_SplitQuickly(price, whole, steps))
        return _WriteSlowly(buffer, price, separator);
    *buffer = '-';
    char* const out = nxDigits::Write(buffer + (price.IsNegative() ? 1 : 0), whole);
    return static_cast<std::size_t>(_WriteSteps(out, steps) - buffer);
}

// A price on the grid, at the places of the notation, as it is read.
bool nxFractionText::_SplitQuickly(const nxDecimal& price, std::uint64_t& whole, std::uint64_t& steps) const
{
    const std::uint64_t magnitude = nxDecimalQuick::GetMagnitude(price.GetValue());
    if (price.GetScale() != _places || magnitude >> 50 != 0 || !IsValid())
        return false;
    const std::uint64_t allSteps = _byUnit.Divide(magnitude);
    whole = _bySteps.Divide(allSteps);
    steps = allSteps - whole * (_denominator * _parts);
    return allSteps * _unit == magnitude;
}

std::size_t nxFractionText::_WriteSlowly(char* buffer, const nxDecimal& price, char separator) const
{
    nxDecimal number = price;
    if (number.GetScale() > _places)
        number.Normalise(_places);
    if (number.GetScale() > nxDecimal::MaxExactPlaces || !IsValid())
        return price.GetAsString(buffer, separator);
    *buffer = '-';
    char* out = buffer + (number.IsNegative() ? 1 : 0);
    const unsigned char places = number.GetDecimalPlaces();
    const std::uint64_t power = nxPowersOfTen::GetInteger(places);
    const std::uint64_t magnitude = nxDecimalQuick::GetMagnitude(number.GetValue());
    const std::uint64_t whole = magnitude / power;
    const std::uint64_t fraction = magnitude - whole * power;
    out = nxDigits::Write(out, whole);
    const std::uint64_t units = places <= _places ? fraction * nxPowersOfTen::GetInteger(_places - places) : 0;
    const std::uint64_t steps = units / _unit;
    out = places <= _places && steps * _unit == units ? _WriteSteps(out, steps)
                                                      : _WriteDecimals(out, fraction, places, separator);
    return static_cast<std::size_t>(out - buffer);
}

char* nxFractionText::_WriteSteps(char* out, std::uint64_t steps) const
{
    const char* const text = _stepTexts.data() + steps * _stepTextSize;
    std::memcpy(out, text, _stepTextSize);
    return out + text[_stepTextSize - 1];
}

// The numerator with its decimals, which are not all 0.
char* nxFractionText::_WriteDecimals(char* out, std::uint64_t fraction, unsigned char places, char separator) const
{
    const nxUnsignedWide scaled = nxUnsignedWide{fraction} * _denominator;
    const std::uint64_t power = nxPowersOfTen::GetInteger(places);
    auto decimals = static_cast<std::uint64_t>(scaled % power);
    std::size_t count = places;
    for (; decimals % 10 == 0; --count)
        decimals /= 10;
    *out++ = _mark;
    nxDigits::WritePadded(out, static_cast<std::uint64_t>(scaled / power), _width);
    out += _width;
    *out++ = separator;
    nxDigits::WritePadded(out, decimals, count);
    out[count] = '\0';
    return out + count;
}
