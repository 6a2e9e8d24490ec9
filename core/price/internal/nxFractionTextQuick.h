// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXFRACTIONTEXTQUICK_H
#define CORE_PRICE_INTERNAL_NXFRACTIONTEXTQUICK_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxFractionText.h"
#include "core/text/inline/nxDigits.h"

/// @file
/// The usual texts of nxFractionText. Inline, because a second call would cost a fifth of the time.

inline nxErrorEnum nxFractionText::Read(std::string_view text, nxDecimal& price, char separator) const
{
    return _ReadQuickly(text, price) ? nxErrorEnum() : _ReadSlowly(text, price, separator);
}

// Texts of up to eight characters without decimals, as one word. A number of seven digits fits with its fraction.
inline bool nxFractionText::_ReadQuickly(std::string_view text, nxDecimal& price) const
{
    const bool isNegative = !text.empty() && text.front() == '-';
    text.remove_prefix(isNegative || (!text.empty() && text.front() == '+') ? 1 : 0);
    const std::size_t size = text.size();
    if (size - 1 >= 8)
        return false;
    std::uint64_t word = nxDigits::LoadRightAligned(text.data(), size);
    const bool isFull = (word & _full.markMask) == _full.mark;
    const _Form& form = isFull ? _full : _short;
    if ((word & form.markMask) != form.mark || size <= form.count + 1)
        return false;
    constexpr std::uint64_t plus = '+' ^ '0';
    if (word >> 56 == plus && isFull)
        word = (word << 8 >> 8) | _half << 56;
    // Without the mark.
    const std::uint64_t whole = word & form.beforeMark;
    const std::uint64_t closed = (word ^ whole ^ form.mark) | whole << 8;
    if (nxDigits::FindNonDigit(closed) != 0)
        return false;
    const std::uint64_t number = nxDigits::Gather(closed);
    const std::uint64_t wholes = form.byTens.Divide(number);
    const std::uint64_t steps = _stepOf[(number - wholes * form.tens) * form.missingTens];
    if (steps == _noStep)
        return false;
    const auto mantissa = static_cast<long long>(wholes * _power + steps * _unit);
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(isNegative ? -mantissa : mantissa, _places);
    return true;
}

#endif
