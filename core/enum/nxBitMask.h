// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXBITMASK_H
#define CORE_ENUM_NXBITMASK_H

#include <compare>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>

#include "core/enum/inline/nxPlainInteger.h"
#include "core/nxExport.h"

/// The base of every 32-bit set of named flags. Derive a mask of your own from nxTypedBitMask.
///
/// Flags use bits 0 to 29. Bit 31 means null (there is no set at all) and bit 30 "no change" (the receiver keeps the
/// set it has); such a mask is not valid. A new mask is valid and empty.
///
/// Every flag has a short and a long description in a process-wide registry, keyed by the mask's class name and the
/// flag's bit.
///
/// - Errors: there are none; words are stored as given, the two top bits included.
/// - Threads: like an int. Texts are registered while the library (or a plug-in) is loaded; reading them takes no lock.
/// - Ownership: a 16-byte value that owns nothing.
/// @code
/// nxProductStateBitMask state;
/// state.SetBits(nxProductStateBitMask::CLOSED | nxProductStateBitMask::EXPIRING);
/// state.GetShortDescription(", ");                                 // "CLOSED, EXPIRING"
/// if (state.AreAnyBitsSet(nxProductStateBitMask::NO_CANCEL)) ...
/// @endcode
class NX_CORE_API nxBitMask
{
public:
    using Word = unsigned;  ///< The integer that holds the flags.

    static constexpr Word NullBit = 0x80000000u;      ///< Set in a mask that is null.
    static constexpr Word NoChangeBit = 0x40000000u;  ///< Set in a mask that means "no change".

    /// The word that has only bit @p index set, 0 to 31.
    static constexpr Word Bit(unsigned index) { return Word{1} << index; }

    virtual ~nxBitMask();
    /// @return whether the mask is a set of flags: neither null nor "no change".
    virtual bool IsValid() const;
    /// @return whether NoChangeBit is set, even if NullBit is set too.
    virtual bool IsNoChange() const;
    /// @return whether NullBit is set.
    virtual bool IsNull() const;
    /// Adds flags. A mask that is not valid starts again from the empty set.
    virtual void SetBits(unsigned bits);
    /// @copydoc SetBits(unsigned)
    /// The words are joined as they are: a null or "no change" operand passes its mark on, and the next SetBits()
    /// empties the mask. Ask IsValid() of an update request before you merge it, or call UpdateFrom().
    virtual void SetBits(const nxBitMask& bits);
    /// Makes the mask null; its flags are lost.
    virtual void SetNull();
    /// Makes the mask mean "no change"; its flags are lost.
    virtual void SetNoChange();
    /// @return the short descriptions of the flags that are set, lowest bit first, with @p separator between them and
    ///         "???" for a flag without a text; nothing for the empty set; "Null" or "No Change" for a mask that is not
    ///         valid; "No Description Available" when the class registered nothing.
    virtual std::string GetShortDescription(const std::string& separator) const;
    /// The same with the long descriptions.
    virtual std::string GetLongDescription(const std::string& separator) const;
    /// @return the name of the concrete class, e.g. "nxProductStateBitMask".
    virtual std::string GetClassName() const = 0;

    /// The word, top bits included.
    unsigned GetValue() const { return _word; }
    /// Stores @p word as it is, top bits included.
    void SetValue(unsigned word) { _word = word; }
    /// @copydoc SetValue
    nxBitMask& operator=(unsigned word)
    {
        _word = word;
        return *this;
    }

    /// The same as SetBits().
    nxBitMask& operator|=(unsigned bits)
    {
        SetBits(bits);
        return *this;
    }
    /// The same as SetBits(), a null or "no change" operand included.
    nxBitMask& operator|=(const nxBitMask& bits)
    {
        SetBits(bits);
        return *this;
    }

    /// Takes over the whole set of an update request, null included; a request with NoChangeBit changes nothing.
    void UpdateFrom(const nxBitMask& request)
    {
        if (!request.IsNoChange())
            _word = request._word;
    }

    /// Removes flags.
    void ClearBits(unsigned bits) { _word &= ~bits; }
    /// @copydoc ClearBits(unsigned)
    void ClearBits(const nxBitMask& bits) { ClearBits(bits._word); }
    /// Makes the mask the empty set, which is valid.
    void Clear() { _word = 0; }

    /// @return whether no flag of @p bits is missing; true for an empty @p bits.
    bool AreAllBitsSet(unsigned bits) const { return (_word & bits) == bits; }
    /// @copydoc AreAllBitsSet(unsigned) const
    bool AreAllBitsSet(const nxBitMask& bits) const { return AreAllBitsSet(bits._word); }
    /// @return whether at least one flag of @p bits is set; false for an empty @p bits.
    bool AreAnyBitsSet(unsigned bits) const { return (_word & bits) != 0; }
    /// @copydoc AreAnyBitsSet(unsigned) const
    bool AreAnyBitsSet(const nxBitMask& bits) const { return AreAnyBitsSet(bits._word); }

    /// Compares the whole words, top bits included, whatever the classes.
    bool operator==(unsigned word) const { return _word == word; }
    /// @copydoc operator==(unsigned) const
    bool operator==(const nxBitMask& other) const { return _word == other._word; }
    /// Orders the whole words, top bits included, so that masks can be keys of std::map and std::set. This is no test for
    /// a subset; see AreAllBitsSet().
    std::strong_ordering operator<=>(const nxBitMask& other) const { return _word <=> other._word; }

    /// @name Deleted, because a word wider than the mask's, or a fraction, would be truncated and lose its upper flags.
    /// @{
    template <nxWiderThan<Word> Wide>
    void SetBits(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    void SetValue(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    nxBitMask& operator=(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    nxBitMask& operator|=(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    void ClearBits(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    bool AreAllBitsSet(Wide) const = delete;
    template <nxWiderThan<Word> Wide>
    bool AreAnyBitsSet(Wide) const = delete;
    template <nxWiderThan<Word> Wide>
    bool operator==(Wide) const = delete;
    /// @}

protected:
    /// Short and long description of every flag, by class name and then by bit.
    using DescriptionMap = std::map<std::string, std::map<unsigned, std::pair<std::string, std::string>>>;

    nxBitMask() = default;                              ///< The empty set.
    explicit nxBitMask(unsigned word) : _word(word) {}  ///< Holds @p word as it is, top bits included.
    nxBitMask(const nxBitMask&) = default;              ///< Concrete classes are copied, not their base.
    nxBitMask& operator=(const nxBitMask&) = default;   ///< Concrete classes are assigned, not their base.

    /// Gives a flag of the class @p className its texts; texts that the flag has already are kept. Call it while the
    /// process or a plug-in is loaded, from one thread; other threads may print masks meanwhile.
    /// @return whether the texts were added.
    static bool _Register(const std::string& className, unsigned bit, const std::string& shortDescription,
                          const std::string& longDescription);
    /// The same for this mask's class.
    bool _Register(unsigned bit, const std::string& shortDescription, const std::string& longDescription);
    /// Deleted, because a word wider than the mask's would be truncated.
    template <nxWiderThan<Word> Wide>
    static bool _Register(const std::string&, Wide, const std::string&, const std::string&) = delete;
    /// Deleted, because a word wider than the mask's would be truncated.
    template <nxWiderThan<Word> Wide>
    bool _Register(Wide, const std::string&, const std::string&) = delete;

    /// All texts, by class name and then by bit. For reading only: masks print only texts added with _Register().
    static DescriptionMap& _GetDescriptionMap();

private:
    unsigned _word = 0;
};

/// Writes the short descriptions, separated by single spaces.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxBitMask& mask);

#endif
