// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXBITMASK64_H
#define CORE_ENUM_NXBITMASK64_H

#include <compare>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>

#include "core/enum/inline/nxPlainInteger.h"
#include "core/nxExport.h"

/// The base of every 64-bit set of named flags: nxBitMask with room for 62 of them. Derive a mask of your own from
/// nxTypedBitMask.
///
/// Flags use bits 0 to 61. Bit 63 means null and bit 62 "no change". The registry of texts is apart from that of the
/// 32-bit masks. In all else the two are alike; see nxBitMask.
/// @code
/// nxServerCapabilityBitMask capabilities(nxServerCapabilityBitMask::ADOPT_ORDER);
/// capabilities |= nxServerCapabilityBitMask::GTC_ORDER;
/// capabilities.GetLongDescription(", ");  // "Adopt order, GTC order"
/// @endcode
class NX_CORE_API nxBitMask64
{
public:
    using Word = unsigned long long;  ///< The integer that holds the flags.

    static constexpr Word NullBit = 0x8000000000000000u;      ///< Set in a mask that is null.
    static constexpr Word NoChangeBit = 0x4000000000000000u;  ///< Set in a mask that means "no change".

    /// The word that has only bit @p index set, 0 to 63.
    static constexpr Word Bit(unsigned index) { return Word{1} << index; }

    virtual ~nxBitMask64();
    /// @return whether the mask is a set of flags: neither null nor "no change".
    virtual bool IsValid() const;
    /// @return whether NoChangeBit is set, even if NullBit is set too.
    virtual bool IsNoChange() const;
    /// @return whether NullBit is set.
    virtual bool IsNull() const;
    /// Adds flags. A mask that is not valid starts again from the empty set.
    virtual void SetBits(unsigned long long bits);
    /// @copydoc SetBits(unsigned long long)
    /// The words are joined as they are: a null or "no change" operand passes its mark on, and the next SetBits()
    /// empties the mask. Ask IsValid() of an update request before you merge it, or call UpdateFrom().
    virtual void SetBits(const nxBitMask64& bits);
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
    /// @return the name of the concrete class, e.g. "nxServerCapabilityBitMask".
    virtual std::string GetClassName() const = 0;

    /// The word, top bits included.
    unsigned long long GetValue() const { return _word; }
    /// Stores @p word as it is, top bits included.
    void SetValue(unsigned long long word) { _word = word; }
    /// @copydoc SetValue
    nxBitMask64& operator=(unsigned long long word)
    {
        _word = word;
        return *this;
    }

    /// The same as SetBits().
    nxBitMask64& operator|=(unsigned long long bits)
    {
        SetBits(bits);
        return *this;
    }
    /// The same as SetBits(), a null or "no change" operand included.
    nxBitMask64& operator|=(const nxBitMask64& bits)
    {
        SetBits(bits);
        return *this;
    }

    /// Takes over the whole set of an update request, null included; a request with NoChangeBit changes nothing.
    void UpdateFrom(const nxBitMask64& request)
    {
        if (!request.IsNoChange())
            _word = request._word;
    }

    /// Removes flags.
    void ClearBits(unsigned long long bits) { _word &= ~bits; }
    /// @copydoc ClearBits(unsigned long long)
    void ClearBits(const nxBitMask64& bits) { ClearBits(bits._word); }
    /// Makes the mask the empty set, which is valid.
    void Clear() { _word = 0; }

    /// @return whether no flag of @p bits is missing; true for an empty @p bits.
    bool AreAllBitsSet(unsigned long long bits) const { return (_word & bits) == bits; }
    /// @copydoc AreAllBitsSet(unsigned long long) const
    bool AreAllBitsSet(const nxBitMask64& bits) const { return AreAllBitsSet(bits._word); }
    /// @return whether at least one flag of @p bits is set; false for an empty @p bits.
    bool AreAnyBitsSet(unsigned long long bits) const { return (_word & bits) != 0; }
    /// @copydoc AreAnyBitsSet(unsigned long long) const
    bool AreAnyBitsSet(const nxBitMask64& bits) const { return AreAnyBitsSet(bits._word); }

    /// Compares the whole words, top bits included, whatever the classes.
    bool operator==(unsigned long long word) const { return _word == word; }
    /// @copydoc operator==(unsigned long long) const
    bool operator==(const nxBitMask64& other) const { return _word == other._word; }
    /// Orders the whole words, top bits included, so that masks can be keys of std::map and std::set. This is no test for
    /// a subset; see AreAllBitsSet().
    std::strong_ordering operator<=>(const nxBitMask64& other) const { return _word <=> other._word; }

    /// @name A word wider than the mask's, or a fraction, would be cut, and a flag of the upper half would become none.
    /// @{
    template <nxWiderThan<Word> Wide>
    void SetBits(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    void SetValue(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    nxBitMask64& operator=(Wide) = delete;
    template <nxWiderThan<Word> Wide>
    nxBitMask64& operator|=(Wide) = delete;
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
    using DescriptionMap = std::map<std::string, std::map<unsigned long long, std::pair<std::string, std::string>>>;

    nxBitMask64() = default;                                        ///< The empty set.
    explicit nxBitMask64(unsigned long long word) : _word(word) {}  ///< Holds @p word as it is, top bits included.
    nxBitMask64(const nxBitMask64&) = default;                      ///< Concrete classes are copied, not their base.
    nxBitMask64& operator=(const nxBitMask64&) = default;           ///< Concrete classes are assigned, not their base.

    /// Gives a flag of the class @p className its texts; texts that the flag has already are kept. Call it while the
    /// process or a plug-in is loaded, from one thread; other threads may print masks meanwhile.
    /// @return whether the texts were added.
    static bool _Register(const std::string& className, unsigned long long bit, const std::string& shortDescription,
                          const std::string& longDescription);
    /// The same for this mask's class.
    bool _Register(unsigned long long bit, const std::string& shortDescription, const std::string& longDescription);
    /// A word wider than the mask's would be cut.
    template <nxWiderThan<Word> Wide>
    static bool _Register(const std::string&, Wide, const std::string&, const std::string&) = delete;
    /// A word wider than the mask's would be cut.
    template <nxWiderThan<Word> Wide>
    bool _Register(Wide, const std::string&, const std::string&) = delete;

    /// All texts, by class name and then by bit. For reading only: masks print only texts added with _Register().
    static DescriptionMap& _GetDescriptionMap();

private:
    unsigned long long _word = 0;
};

/// Writes the short descriptions, separated by single spaces.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxBitMask64& mask);

#endif
