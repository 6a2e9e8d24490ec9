#ifndef CORE_ENUM_INLINE_NXPLAININTEGER_H
#define CORE_ENUM_INLINE_NXPLAININTEGER_H

#include <concepts>
#include <type_traits>

/// An integer that is a number: every integer type but bool.
template <class Type>
concept nxPlainInteger = std::integral<Type> && !std::same_as<Type, bool>;

/// A number or a constant that would lose something on its way into a @p Word: a wider one, or a floating one.
template <class Type, class Word>
concept nxWiderThan = std::convertible_to<Type, Word> && !std::is_class_v<Type> &&
                      (std::floating_point<Type> || sizeof(Type) > sizeof(Word));

/// What the language turns into an unsigned though it is no whole number, or a constant that does not fit.
template <class Type>
concept nxUnfitForUnsigned = std::same_as<Type, bool> ||(nxWiderThan<Type, unsigned> && !nxPlainInteger<Type>);

/// @return whether @p number is neither negative nor too large for 32 bits.
template <nxPlainInteger Number>
constexpr bool nxFitsUnsigned(Number number)
{
    return static_cast<Number>(static_cast<unsigned>(number)) == number && !(number < Number{});
}

#endif
