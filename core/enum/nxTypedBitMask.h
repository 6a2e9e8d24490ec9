// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXTYPEDBITMASK_H
#define CORE_ENUM_NXTYPEDBITMASK_H

#include <concepts>
#include <cstddef>
#include <functional>
#include <string>

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/enum/nxRefusedTexts.h"

/// The part that every concrete bit mask shares: public construction from a word, copying and assignment, and the registration
/// of its flags' texts.
///
/// @tparam Derived the concrete class, which adds GetClassName() and its flags.
/// @tparam Base nxBitMask or nxBitMask64.
///
/// An application's own mask is declared as the library's are. In the header:
/// @code
/// class myQuoteFlagsBitMask final : public nxTypedBitMask<myQuoteFlagsBitMask, nxBitMask>
/// {
/// public:
///     enum Flag : Word
///     {
///         FIRM = Bit(0),
///         INDICATIVE = Bit(1),
///     };
///     using nxTypedBitMask::nxTypedBitMask;
///     using nxTypedBitMask::operator=;
///     std::string GetClassName() const override { return "myQuoteFlagsBitMask"; }
///
/// private:
///     static bool _RegisterValues();
///     static const bool _registered;
/// };
/// @endcode
/// and in the source file, so that the texts are registered as soon as the program or plug-in is loaded:
/// @code
/// const bool myQuoteFlagsBitMask::_registered = _RegisterValues();
/// bool myQuoteFlagsBitMask::_RegisterValues()
/// {
///     static constexpr FlagTexts flags[] = {{FIRM, "FIRM", "Firm"}, {INDICATIVE, "INDICATIVE", "Indicative"}};
///     return _RegisterFlags("myQuoteFlagsBitMask", flags);
/// }
/// @endcode
template <class Derived, class Base>
class nxTypedBitMask : public Base
{
public:
    using Word = typename Base::Word;  ///< The integer that holds the flags: 32 or 64 bits.

    nxTypedBitMask() = default;  ///< The empty set.
    /// Holds @p word as it is, top bits included.
    nxTypedBitMask(Word word) : Base(word) {}
    /// Deleted, because a word wider than the mask's would be truncated.
    template <nxWiderThan<Word> Wide>
    nxTypedBitMask(Wide) = delete;

    /// Stores @p word as it is, top bits included.
    Derived& operator=(Word word)
    {
        this->SetValue(word);
        return static_cast<Derived&>(*this);
    }
    /// Deleted, because a word wider than the mask's would be truncated.
    template <nxWiderThan<Word> Wide>
    Derived& operator=(Wide) = delete;

    /// @return a copy of @p a with the flags of @p b added, as SetBits() adds them.
    friend Derived operator|(const Derived& a, const Derived& b)
    {
        Derived both(a);
        both.SetBits(b);
        return both;
    }

protected:
    /// A flag with its short and its long description.
    struct FlagTexts
    {
        Word word;                     ///< The flag's bit.
        const char* shortDescription;  ///< The identifier.
        const char* longDescription;   ///< The wording.
    };

    /// Registers @p flags for the class @p className. A flag that already has another text keeps it; nxRefusedTexts
    /// reports the refused one.
    /// @return true.
    template <std::size_t Count>
    static bool _RegisterFlags(const std::string& className, const FlagTexts (&flags)[Count])
    {
        for (const FlagTexts& flag : flags)
            if (!Base::_Register(className, flag.word, flag.shortDescription, flag.longDescription))
                nxRefusedTexts::AddFlag(className, flag.word, flag.shortDescription,
                                        Base::_GetDescriptionMap()[className][flag.word].first);
        return true;
    }
};

/// Masks of one class can be keys of unordered containers.
template <class Mask>
requires std::derived_from<Mask, nxBitMask> || std::derived_from<Mask, nxBitMask64>
struct std::hash<Mask>
{
    /// Agrees with `==`.
    std::size_t operator()(const Mask& mask) const noexcept
    {
        return std::hash<typename Mask::Word>()(mask.GetValue());
    }
};

#endif
