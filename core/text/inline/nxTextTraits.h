// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXTEXTTRAITS_H
#define CORE_TEXT_INLINE_NXTEXTTRAITS_H

#include <concepts>
#include <type_traits>

/// @file
/// Types that would print as something unintended. The printing operations refuse them.

/// Pointers, pointers to members, and types that convert to a pointer as a lambda does: all convert to bool implicitly.
template <class Type>
concept nxPointer = std::is_member_pointer_v<Type> || requires(const Type& value)
{
    requires std::is_pointer_v<decltype(+value)>;
};

/// The character types other than `char`; `signed char` and `unsigned char` count as small numbers.
template <class Type>
concept nxWideCharacter = std::same_as<Type, wchar_t> || std::same_as<Type, char8_t> || std::same_as<Type, char16_t> ||
    std::same_as<Type, char32_t>;

/// Pointers to what may be a text of characters other than `char`.
template <class Type, class Pointee = std::remove_cv_t<std::remove_pointer_t<Type>>>
concept nxForeignText = std::is_pointer_v<Type> &&
    (nxWideCharacter<Pointee> || std::same_as<Pointee, signed char> || std::same_as<Pointee, unsigned char>);

/// Types that would print as an address, a bool or a number although something else is meant: texts of other characters
/// and such characters themselves, functions, lambdas, pointers to members or to volatile objects.
template <class Type>
concept nxMisprinted = nxForeignText<Type> || nxWideCharacter<Type> ||
    (nxPointer<Type> && !std::convertible_to<Type, const void*>);

#endif
