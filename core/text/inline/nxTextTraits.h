#ifndef CORE_TEXT_INLINE_NXTEXTTRAITS_H
#define CORE_TEXT_INLINE_NXTEXTTRAITS_H

#include <concepts>
#include <type_traits>

/// @file
/// Types that would print as something else than what is meant: what the printing operations refuse.

/// Pointers, pointers to members, and what stands for a pointer as a lambda does: the language turns them into a bool.
template <class Type>
concept nxPointer = std::is_member_pointer_v<Type> || requires(const Type& value)
{
    requires std::is_pointer_v<decltype(+value)>;
};

/// The types of a character that is no `char`; `signed char` and `unsigned char` are small numbers.
template <class Type>
concept nxWideCharacter = std::same_as<Type, wchar_t> || std::same_as<Type, char8_t> || std::same_as<Type, char16_t> ||
    std::same_as<Type, char32_t>;

/// Pointers to what may be a text but not one of `char`.
template <class Type, class Pointee = std::remove_cv_t<std::remove_pointer_t<Type>>>
concept nxForeignText = std::is_pointer_v<Type> &&
    (nxWideCharacter<Pointee> || std::same_as<Pointee, signed char> || std::same_as<Pointee, unsigned char>);

/// What converts to an address, a bool or a number and so prints as none of what is meant: texts of other characters and
/// such characters themselves, functions, lambdas, pointers to members or to volatile objects.
template <class Type>
concept nxMisprinted = nxForeignText<Type> || nxWideCharacter<Type> ||
    (nxPointer<Type> && !std::convertible_to<Type, const void*>);

#endif
