// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXENUM_H
#define CORE_ENUM_NXENUM_H

#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/enum/inline/nxEnumTable.h"
#include "core/enum/inline/nxPlainInteger.h"
#include "core/enum/nxEnumValue.h"
#include "core/nxExport.h"

/// The base of every named enumeration: one value of the process-wide numbering, with texts kept in a registry.
///
/// Every value has a short description, which is its identifier ("NX_ERR_NOT_FOUND") and can be parsed back, and a long
/// description, which is its wording ("not found"). nxListedEnum.h helps to make a class of your own.
///
/// - Value 0 is "undefined": the state after construction and Clear(). Value 2 is "no change". Value 1 is never stored.
/// - Errors: a setter that gets a value outside the class's interval silently stores 0; only the parsing setters return
///   whether they succeeded.
/// - Threads: like an int. Looking up takes no lock and does not fail for want of memory. A plug-in that is loaded later
///   may register its own values while other threads print and parse.
/// - Ownership: a 16-byte value that owns nothing. Texts are returned by reference and live as long as the process.
class NX_CORE_API nxEnum
{
public:
    /// One value with its identifier (at most 64 characters) and its wording, for registration.
    struct ValueTexts
    {
        unsigned value;                ///< Inside the interval of its class.
        const char* shortDescription;  ///< The identifier.
        const char* longDescription;   ///< The wording.
    };

    /// @return the name of the concrete class, e.g. "nxBoolEnum".
    virtual std::string GetClassName() const = 0;

    /// @return whether a class has registered texts for @p value.
    static bool IsRegisteredEnumValue(unsigned value);
    /// The same for other integer types: a number that 32 bits cannot hold is not registered.
    template <nxPlainInteger Number>
    static bool IsRegisteredEnumValue(Number value)
    {
        return nxFitsUnsigned(value) && IsRegisteredEnumValue(static_cast<unsigned>(value));
    }

    /// @return the identifier; "NOT_REGISTERED" for a value without texts.
    const std::string& GetShortDescription() const { return _GetTexts().first; }
    /// @return the identifier of @p value, whatever its class; "NOT_REGISTERED" for a value without texts.
    static const std::string& GetShortDescriptionOf(nxEnumValue value) { return _GetTextsOf(value).first; }
    /// @return the wording; "not registered" for a value without texts.
    const std::string& GetLongDescription() const { return _GetTexts().second; }
    /// The same as GetShortDescription().
    const std::string& GetAsString() const { return GetShortDescription(); }

    unsigned GetValue() const { return _value; }                                   ///< The value as a number.
    nxEnumValue GetEnumValue() const { return static_cast<nxEnumValue>(_value); }  ///< The value as a constant.

    bool IsUndefined() const { return _value == NX_ENUM_UNDEFINED; }  ///< The value is 0.
    bool IsNoChange() const { return _value == NX_ENUM_NO_CHANGE; }   ///< The value is 2.
    void Clear() { _value = NX_ENUM_UNDEFINED; }                      ///< The value becomes 0.
    void SetNoChange() { _value = NX_ENUM_NO_CHANGE; }                ///< The value becomes 2.

    /// @return whether the value lies between the bounds of its class. The three shared values do not, with one exception:
    ///         the interval of nxGenericEnum holds "no change".
    bool IsSpecificTypeForInstance() const;

    /// Replaces @p values with the registered values of this object's class, ascending, the two bounds included where
    /// they are registered. nxTypedEnum::GetRegisteredValues() walks over them without a container.
    void GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>& values) const;
    /// @copydoc GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>&) const
    void GetRegisteredEnumValuesForInstance(std::set<nxEnumValue>& values) const;

    /// @return whether this is an error code of the security block, 1001000 to 1001048.
    bool IsSecurityError() const { return _value >= 1001000 && _value <= 1001048; }
    /// @return whether this is one of the two messaging time-outs. A lock's or thread's time-out is not counted.
    bool IsTimeout() const { return _value == NX_ERR_MSG_RECEIPT_TIMED_OUT || _value == NX_ERR_MSG_RESPONSE_TIMED_OUT; }

    /// Sets the value whose short description is @p text; exact, case-sensitive. A null pointer is an empty text.
    /// @return false when no value has that text (this object is unchanged), or when the value belongs to another class
    ///         (this object becomes undefined).
    bool SetFromString(const std::string& text) { return _SetFromText(text); }
    /// @copydoc SetFromString(const std::string&)
    bool SetFromString(std::string_view text) { return _SetFromText(text); }
    /// @copydoc SetFromString(const std::string&)
    bool SetFromString(const char* text) { return _SetFromText(text != nullptr ? text : ""); }
    /// The same as SetFromString().
    bool SetFromShortDescriptionString(const std::string& text) { return _SetFromText(text); }
    /// The same as SetFromString().
    bool SetFromShortDescriptionString(std::string_view text) { return _SetFromText(text); }
    /// The same as SetFromString().
    bool SetFromShortDescriptionString(const char* text) { return SetFromString(text); }

    /// Stores @p value, or 0 when it is neither inside the class's interval nor 0 nor 2.
    nxEnum& operator=(nxEnumValue value)
    {
        _Set(value);
        return *this;
    }
    /// @copydoc operator=(nxEnumValue)
    nxEnum& operator=(unsigned value)
    {
        _Set(value);
        return *this;
    }
    /// The same for other integer types: a negative number, or one that is too wide, is stored as 0.
    template <nxPlainInteger Number>
    nxEnum& operator=(Number value)
    {
        _Set(_Narrowed(value));
        return *this;
    }
    /// A bool is not a value of an enumeration, and neither is a fraction.
    template <nxUnfitForUnsigned Unfit>
    nxEnum& operator=(Unfit) = delete;

protected:
    nxEnum() = default;
    ~nxEnum() = default;

    // Only sources of the library call these two. A compiler that knows the class of an object may call nxTypedEnum's
    // overriders directly, and a program has neither instantiated them nor does the library export them.

    /// The exclusive lower bound of the class's values.
    virtual unsigned _MinValue() const = 0;
    /// The exclusive upper bound of the class's values.
    virtual unsigned _MaxValue() const = 0;

    /// Adds one value with its texts to the process-wide registry. Call it while the process or a plug-in is loaded,
    /// from one thread; other threads may look up meanwhile.
    /// An empty short description is treated like any other: SetFromString("") then finds its value, in every class.
    /// @return false, with nothing changed, when the value or the short description is taken, or when the short
    ///         description is longer than 64 characters. The value need not be one of the calling class; see
    ///         nxTypedEnum::_Register().
    static bool _Register(unsigned value, const std::string& shortDescription, const std::string& longDescription);
    /// Deleted, because a value wider than 32 bits would be truncated.
    template <nxWiderThan<unsigned> Wide>
    static bool _Register(Wide, const std::string&, const std::string&) = delete;
    /// Adds the rows from @p first up to but not including @p last. Rows that _Register() refuses are left out and
    /// reported by nxRefusedTexts.
    /// @return true, for the class's _registered to hold.
    static bool _RegisterAll(const ValueTexts* first, const ValueTexts* last);
    /// @copydoc _RegisterAll(const ValueTexts*, const ValueTexts*)
    template <std::size_t Count>
    static bool _RegisterAll(const ValueTexts (&rows)[Count])
    {
        return _RegisterAll(rows, rows + Count);
    }

    /// Makes the texts of the library's own lists, among them the rows from @p lowest to @p highest; the library's classes
    /// register with it.
    /// @return true.
    static bool _RegisterListed(unsigned lowest, unsigned highest);
    /// Does the same. Programs built with headers of 1.0 call it.
    static void _FillFromLists();

    /// @name Comparison of the stored values as unsigned numbers, for the operators of the concrete classes.
    /// @{
    bool _EqualTo(unsigned value) const { return _value == value; }                 ///< With a plain number.
    bool _EqualTo(const nxEnum& other) const { return _value == other._value; }     ///< Whatever its class.
    bool _NotEqualTo(unsigned value) const { return _value != value; }              ///< With a plain number.
    bool _NotEqualTo(const nxEnum& other) const { return _value != other._value; }  ///< Whatever its class.
    bool _LessThan(unsigned value) const { return _value < value; }                 ///< With a plain number.
    bool _LessThan(const nxEnum& other) const { return _value < other._value; }     ///< Whatever its class.
    bool _GreaterThan(unsigned value) const { return _value > value; }              ///< With a plain number.
    bool _GreaterThan(const nxEnum& other) const { return _value > other._value; }  ///< Whatever its class.
    /// @}

    /// The rule of every setter: a value between the exclusive bounds, or 0, or 2; never 1.
    static constexpr bool _IsAcceptable(unsigned value, unsigned minimum, unsigned maximum)
    {
        return (minimum < value && value < maximum && value != NX_ENUM_NOT_REGISTERED) || value == NX_ENUM_UNDEFINED ||
               value == NX_ENUM_NO_CHANGE;
    }
    /// A negative number, or one that is too wide, becomes 0 rather than a truncated value that happens to fit.
    template <nxPlainInteger Number>
    static constexpr unsigned _Narrowed(Number number)
    {
        return nxFitsUnsigned(number) ? static_cast<unsigned>(number) : static_cast<unsigned>(NX_ENUM_UNDEFINED);
    }
    /// Stores a value that the concrete class has already accepted.
    void _SetAccepted(unsigned value) { _value = value; }
    /// SetFromString() of a class whose bounds are known.
    bool _SetFromText(std::string_view text, unsigned minimum, unsigned maximum)
    {
        std::int64_t found = nxEnumTable::Find(text);
        if (found == nxEnumTable::NotFound && (found = _FindMissing(text)) == nxEnumTable::NotFound)
            return false;
        const unsigned value = static_cast<unsigned>(found);
        const bool isAcceptable = _IsAcceptable(value, minimum, maximum);
        _value = isAcceptable ? value : +NX_ENUM_UNDEFINED;
        return isAcceptable;
    }

private:
    nxEnum(const nxEnum&) = delete;
    nxEnum& operator=(const nxEnum&) = delete;

    static bool _RegisterValues();
    static std::map<unsigned, std::pair<std::string, std::string>>& _Map();
    static std::map<std::string, unsigned>& _ReverseMap();
    static const bool _registered;

    static bool _Add(unsigned value, std::string_view shortDescription, std::string_view longDescription);
    // The fallback of a look-up that finds nothing: the library's own values may not have been looked for yet. This also
    // makes the order of initialisers irrelevant.
    static const nxEnumTable::Texts& _GetMissingTexts(unsigned value);
    static std::int64_t _FindMissing(std::string_view text);

    static const nxEnumTable::Texts& _GetTextsOf(const unsigned& value)
    {
        if (const nxEnumTable::Texts* const texts = nxEnumTable::Find(value); texts != nullptr) [[likely]]
            return *texts;
        return _GetMissingTexts(value);
    }
    const nxEnumTable::Texts& _GetTexts() const { return _GetTextsOf(_value); }

    bool _SetFromText(std::string_view text);
    void _Set(unsigned value);

    unsigned _value = NX_ENUM_UNDEFINED;
};

/// Compares the stored value.
inline bool operator==(const nxEnum& left, nxEnumValue right)
{
    return left.GetValue() == static_cast<unsigned>(right);
}
/// Compares the stored value.
inline bool operator==(const nxEnum& left, unsigned right) { return left.GetValue() == right; }
/// Compares the stored value with a number of another integer type. A number that 32 bits cannot hold equals no value.
template <std::derived_from<nxEnum> Enum, nxPlainInteger Number>
bool operator==(const Enum& left, Number right)
{
    return nxFitsUnsigned(right) && left.GetValue() == static_cast<unsigned>(right);
}
/// Deleted, because an enumeration is not a truth value: `error == false` would be true for a success. Use
/// nxErrorEnum::IsOK().
template <std::derived_from<nxEnum> Enum, nxUnfitForUnsigned Unfit>
bool operator==(const Enum&, Unfit) = delete;
/// Compares the stored values, whatever the classes.
inline bool operator==(const nxEnum& left, const nxEnum& right) { return left.GetValue() == right.GetValue(); }

/// Writes the short description.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxEnum& value);

/// Values of one enumeration class can be keys of unordered containers.
template <class Enum>
requires std::derived_from<Enum, nxEnum>
struct std::hash<Enum>
{
    /// Agrees with `==`.
    std::size_t operator()(const Enum& value) const noexcept { return std::hash<unsigned>()(value.GetValue()); }
};

#endif
