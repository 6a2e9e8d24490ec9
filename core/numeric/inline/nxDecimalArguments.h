// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXDECIMALARGUMENTS_H
#define CORE_NUMERIC_INLINE_NXDECIMALARGUMENTS_H

#include <concepts>
#include <string>
#include <type_traits>

#include "core/enum/inline/nxPlainInteger.h"
#include "core/text/inline/nxTextTraits.h"

/// From which types a decimal is made.
class nxDecimalArguments
{
public:
    /// Integers that 64 bits hold. Characters and truth values are not numbers, although the language counts them as
    /// integers.
    template <class Number>
    static constexpr bool IsWhole = nxPlainInteger<Number> && sizeof(Number) <= sizeof(long long) &&
                                    !std::same_as<Number, char> && !nxWideCharacter<Number>;
    /// What converts to an integer and loses its fraction, its high bits or its state. Constants of an enumeration lose
    /// nothing.
    template <class Number>
    static constexpr bool IsCut = std::convertible_to<Number, long long> && !IsWhole<Number> && !std::is_enum_v<Number>;
    /// A quotient whose numerator, denominator or places would be cut.
    template <class Numerator, class Denominator, class Places>
    static constexpr bool AreCut = IsCut<Numerator> || IsCut<Denominator> || std::floating_point<Places>;
    /// A number that is neither whole nor floating, places with a fraction, or a text with anything but a separator.
    template <class Value, class Places>
    static constexpr bool AreMistaken = (std::integral<Value> && !IsWhole<Value>) || std::floating_point<Places> ||
                                        (std::convertible_to<Value, std::string> && !std::same_as<Places, char>);
};

#endif
