// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXTYPEDENUM_H
#define CORE_ENUM_NXTYPEDENUM_H

#include <compare>

#include "core/enum/nxEnum.h"
#include "core/enum/nxEnumRange.h"
#include "core/enum/nxRefusedTexts.h"

/// The part that every concrete enumeration class shares: construction, assignment, comparison with its own class, and bounds.
///
/// @tparam Derived the concrete class, which adds GetClassName() and registers its values.
/// @tparam Minimum, Maximum the bounds of its values, neither of them a value itself; intervals of different classes
///         are disjoint. The library's own lie below 2000000.
///
/// nxListedEnum.h makes an application's own enumeration of a list. Written out, the header has:
/// @code
/// class mySessionEnum final : public nxTypedEnum<mySessionEnum, 3000000, 3000100>
/// {
/// public:
///     static constexpr nxEnumValue DAY{3000001};
///     static constexpr nxEnumValue NIGHT{3000002};
///
///     using nxTypedEnum::nxTypedEnum;
///     using nxTypedEnum::operator=;
///     std::string GetClassName() const override { return "mySessionEnum"; }
///
/// private:
///     static bool _RegisterValues();
///     static const bool _registered;
/// };
/// @endcode
/// and in the source file, so that the texts are registered as soon as the program or plug-in is loaded:
/// @code
/// const bool mySessionEnum::_registered = _RegisterValues();
/// bool mySessionEnum::_RegisterValues()
/// {
///     static constexpr ValueTexts values[] = {{DAY, "MY_SESSION_DAY", "day session"},
///                                             {NIGHT, "MY_SESSION_NIGHT", "night session"}};
///     return _RegisterAll(values);
/// }
/// @endcode
template <class Derived, unsigned Minimum, unsigned Maximum>
class nxTypedEnum : public nxEnum
{
    static_assert(Minimum < Maximum);

public:
    static constexpr unsigned MinimumValue = Minimum;  ///< Exclusive lower bound of the class's values.
    static constexpr unsigned MaximumValue = Maximum;  ///< Exclusive upper bound of the class's values.

    nxTypedEnum() = default;  ///< Undefined.
    /// Holds @p value, or 0 when the class does not accept it.
    nxTypedEnum(nxEnumValue value) noexcept { _SetAccepted(_Accepted(value)); }
    /// The same for a number of any integer type except bool; explicit, so that no number becomes an enumeration by
    /// accident.
    template <nxPlainInteger Number>
    explicit nxTypedEnum(Number value) noexcept
    {
        _SetAccepted(_Accepted(nxEnum::_Narrowed(value)));
    }
    /// Holds the value of @p other.
    nxTypedEnum(const nxTypedEnum& other) noexcept : nxEnum() { _SetAccepted(other.GetValue()); }
    /// Stores the value of @p other.
    nxTypedEnum& operator=(const nxTypedEnum& other) noexcept
    {
        _SetAccepted(other.GetValue());
        return *this;
    }
    /// Stores @p value, or 0 when the class does not accept it.
    Derived& operator=(nxEnumValue value) noexcept
    {
        _SetAccepted(_Accepted(value));
        return static_cast<Derived&>(*this);
    }
    /// Stores @p value, or 0 when the class does not accept it.
    template <nxPlainInteger Number>
    Derived& operator=(Number value) noexcept
    {
        _SetAccepted(_Accepted(nxEnum::_Narrowed(value)));
        return static_cast<Derived&>(*this);
    }

    /// Does what @p request asks for: keeps the value for "no change" and takes over any other, undefined included.
    void UpdateFrom(const Derived& request) noexcept
    {
        if (!request.IsNoChange())
            _SetAccepted(request.GetValue());
    }

    /// @copydoc nxEnum::SetFromString(const std::string&)
    bool SetFromString(const std::string& text) { return _SetFromText(text, Minimum, Maximum); }
    /// @copydoc nxEnum::SetFromString(const std::string&)
    bool SetFromString(std::string_view text) { return _SetFromText(text, Minimum, Maximum); }
    /// @copydoc nxEnum::SetFromString(const std::string&)
    bool SetFromString(const char* text) { return SetFromString(std::string_view(text != nullptr ? text : "")); }

    /// @copydoc nxEnum::IsSpecificTypeForInstance()
    bool IsSpecificTypeForInstance() const { return Minimum < GetValue() && GetValue() < Maximum; }

    /// @return the class's own registered values, ascending:
    ///         `for (const nxBoolEnum value : nxBoolEnum::GetRegisteredValues())`.
    static nxEnumRange<Derived> GetRegisteredValues()
    {
        constexpr unsigned lowest = Minimum < NX_ENUM_NO_CHANGE ? NX_ENUM_NO_CHANGE : Minimum;  // not the shared values
        return {lowest + 1, Maximum - 1};
    }

    /// Ordered by value.
    std::strong_ordering operator<=>(const nxTypedEnum& other) const { return GetValue() <=> other.GetValue(); }
    /// Ordered by value.
    std::strong_ordering operator<=>(nxEnumValue value) const { return GetValue() <=> static_cast<unsigned>(value); }

protected:
    /// A row to register. A constant row, as above, does not compile when it is outside the class's interval.
    struct ValueTexts : nxEnum::ValueTexts
    {
        /// One value with its identifier and its wording.
        constexpr ValueTexts(unsigned number, const char* identifier, const char* wording)
            : nxEnum::ValueTexts{number, identifier, wording}
        {
            if (!_IsInside(number))
                _ValueIsOutsideTheIntervalOfItsClass();
        }
    };

    /// As nxEnum::_Register(), for values of this class, the two bounds included.
    /// @return false, with nothing changed, also for a value of another class.
    static bool _Register(unsigned value, const std::string& shortDescription, const std::string& longDescription)
    {
        return _IsInside(value) && nxEnum::_Register(value, shortDescription, longDescription);
    }
    /// Deleted, because a value wider than 32 bits would be truncated.
    template <nxWiderThan<unsigned> Wide>
    static bool _Register(Wide, const std::string&, const std::string&) = delete;

    /// Registers @p rows. Rows outside the class's interval and rows that _Register() refuses are left out and reported
    /// by nxRefusedTexts, and so is an interval that overlaps with another class's.
    /// @return true, for the class's _registered to hold.
    template <std::size_t Count>
    static bool _RegisterAll(const ValueTexts (&rows)[Count])
    {
        if constexpr (requires { Derived().GetClassName(); })
            nxRefusedTexts::AddClass(Derived().GetClassName(), Minimum, Maximum);
        for (const ValueTexts& row : rows)
            if (_IsInside(row.value))
                nxEnum::_RegisterAll(&row, &row + 1);
            else
                nxRefusedTexts::AddOutside(row.value, row.shortDescription != nullptr ? row.shortDescription : "");
        return true;
    }

    ~nxTypedEnum() = default;
    unsigned _MinValue() const override { return Minimum; }  ///< MinimumValue.
    unsigned _MaxValue() const override { return Maximum; }  ///< MaximumValue.

private:
    static constexpr bool _IsInside(unsigned value) { return Minimum <= value && value <= Maximum; }
    static void _ValueIsOutsideTheIntervalOfItsClass() {}  // no constant expression calls it

    static constexpr unsigned _Accepted(unsigned value)
    {
        return _IsAcceptable(value, Minimum, Maximum) ? value : static_cast<unsigned>(NX_ENUM_UNDEFINED);
    }
};

#endif
