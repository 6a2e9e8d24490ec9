// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INLINE_NXPLAININTEGER_H
#define CORE_ENUM_INLINE_NXPLAININTEGER_H

#include <concepts>
#include <type_traits>

/// Every integer type except bool.
template <class Type>
concept nxPlainInteger = std::integral<Type> && !std::same_as<Type, bool>;

/// A number or constant that a @p Word may not hold exactly: a wider one, or one of a floating-point type.
template <class Type, class Word>
concept nxWiderThan = std::convertible_to<Type, Word> && !std::is_class_v<Type> &&
                      (std::floating_point<Type> || sizeof(Type) > sizeof(Word));

/// A type that converts to unsigned implicitly although it is not a whole number, or a constant that does not fit.
template <class Type>
concept nxUnfitForUnsigned = std::same_as<Type, bool> ||(nxWiderThan<Type, unsigned> && !nxPlainInteger<Type>);

/// @return whether @p number is neither negative nor too large for 32 bits.
template <nxPlainInteger Number>
constexpr bool nxFitsUnsigned(Number number)
{
    return static_cast<Number>(static_cast<unsigned>(number)) == number && !(number < Number{});
}

#endif
