#ifndef CORE_ENUM_NXENUM_H
#define CORE_ENUM_NXENUM_H

#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/enum/nxEnumValue.h"
#include "core/nxExport.h"

/// The base of every named enumeration: one value of the process-wide numbering, with texts kept in a registry.
///
/// Every value has a short description, which is its identifier ("NX_ERR_NOT_FOUND") and can be parsed back, and a long
/// description, which is its wording ("not found"). Derive a class of your own from nxTypedEnum.
///
/// - Value 0 is "undefined": the state after construction and Clear(). Value 2 is "no change". Value 1 is never stored.
/// - Errors: a setter that is given a value outside the class's interval stores 0 and says nothing; only the parsing
///   setters report by their result.
/// - Threads: like an int. The registry is filled while the library (or a plug-in) is loaded and only read afterwards;
///   no operation takes a lock.
/// - Ownership: a 16-byte value that owns nothing. Texts are returned by reference and live as long as the process.
class NX_CORE_API nxEnum
{
public:
    /// @return the name of the concrete class, e.g. "nxBoolEnum".
    virtual std::string GetClassName() const = 0;

    /// @return whether some class has registered texts for @p value.
    static bool IsRegisteredEnumValue(unsigned value);

    /// @return the identifier; "NOT_REGISTERED" for a value without texts.
    const std::string& GetShortDescription() const;
    /// @return the wording; "not registered" for a value without texts.
    const std::string& GetLongDescription() const;
    /// The same as GetShortDescription().
    const std::string& GetAsString() const { return GetShortDescription(); }

    unsigned GetValue() const { return _value; }
    nxEnumValue GetEnumValue() const { return static_cast<nxEnumValue>(_value); }

    bool IsUndefined() const { return _value == NX_ENUM_UNDEFINED; }
    bool IsNoChange() const { return _value == NX_ENUM_NO_CHANGE; }
    void Clear() { _value = NX_ENUM_UNDEFINED; }
    void SetNoChange() { _value = NX_ENUM_NO_CHANGE; }

    /// @return whether the value is one of the class's own and not one of the three shared ones.
    bool IsSpecificTypeForInstance() const { return _MinValue() < _value && _value < _MaxValue(); }

    /// Replaces @p values with the registered values of this object's class, ascending.
    void GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>& values) const;
    /// @copydoc GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>&) const
    void GetRegisteredEnumValuesForInstance(std::set<nxEnumValue>& values) const;

    /// @return whether this is an error code of the security block, 1001000 to 1001048.
    bool IsSecurityError() const { return _value >= 1001000 && _value <= 1001048; }
    /// @return whether this is one of the two messaging time-outs. A lock's or thread's time-out is not counted.
    bool IsTimeout() const { return _value == NX_ERR_MSG_RECEIPT_TIMED_OUT || _value == NX_ERR_MSG_RESPONSE_TIMED_OUT; }

    /// Sets the value whose short description is @p text; exact, case-sensitive.
    /// @return false when no value has that text (this object is unchanged), or when the value belongs to another class
    ///         (this object becomes undefined).
    bool SetFromString(const std::string& text) { return SetFromShortDescriptionString(text); }
    /// @copydoc SetFromString
    bool SetFromShortDescriptionString(const std::string& text);

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

    bool operator==(nxEnumValue value) const { return _value == static_cast<unsigned>(value); }
    bool operator==(unsigned value) const { return _value == value; }
    /// Compares the stored values, whatever the classes.
    bool operator==(const nxEnum& other) const { return _value == other._value; }

protected:
    nxEnum() = default;
    ~nxEnum() = default;

    /// The exclusive lower bound of the class's values.
    virtual unsigned _MinValue() const = 0;
    /// The exclusive upper bound of the class's values.
    virtual unsigned _MaxValue() const = 0;

    /// Adds one value with its texts to the process-wide registry. Call it while the process or a plug-in is loaded,
    /// from one thread.
    /// @return false, with nothing changed, when the value or the short description is taken, or when the short
    ///         description is longer than 64 characters.
    static bool _Register(unsigned value, const std::string& shortDescription, const std::string& longDescription);

    bool _EqualTo(unsigned value) const { return _value == value; }
    bool _EqualTo(const nxEnum& other) const { return _value == other._value; }
    bool _NotEqualTo(unsigned value) const { return _value != value; }
    bool _NotEqualTo(const nxEnum& other) const { return _value != other._value; }
    bool _LessThan(unsigned value) const { return _value < value; }
    bool _LessThan(const nxEnum& other) const { return _value < other._value; }
    bool _GreaterThan(unsigned value) const { return _value > value; }
    bool _GreaterThan(const nxEnum& other) const { return _value > other._value; }

    /// Stores a value that the concrete class has already accepted.
    void _SetAccepted(unsigned value) { _value = value; }

private:
    nxEnum(const nxEnum&) = delete;
    nxEnum& operator=(const nxEnum&) = delete;

    static bool _RegisterValues();
    static std::map<unsigned, std::pair<std::string, std::string>>& _Map();
    static std::map<std::string, unsigned>& _ReverseMap();
    static const bool _registered;

    void _Set(unsigned value);

    unsigned _value = NX_ENUM_UNDEFINED;
};

/// Writes the short description.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxEnum& value);

#endif
