#ifndef CORE_ENUM_NXTYPEDENUM_H
#define CORE_ENUM_NXTYPEDENUM_H

#include <cstddef>
#include <functional>

#include "core/enum/nxEnum.h"

/// What every concrete enumeration class shares: construction, assignment, comparison with its own class, and bounds.
///
/// @tparam Derived the concrete class, which adds GetClassName() and registers its values.
/// @tparam Minimum, Maximum the exclusive bounds of its values; intervals of different classes are disjoint.
template <class Derived, unsigned Minimum, unsigned Maximum>
class nxTypedEnum : public nxEnum
{
public:
    nxTypedEnum() = default;
    /// Holds @p value, or 0 when the class does not accept it.
    nxTypedEnum(nxEnumValue value) { _SetAccepted(_Accepted(value)); }
    nxTypedEnum(const nxTypedEnum& other) : nxEnum() { _SetAccepted(other.GetValue()); }
    nxTypedEnum& operator=(const nxTypedEnum& other)
    {
        _SetAccepted(other.GetValue());
        return *this;
    }
    /// Stores @p value, or 0 when the class does not accept it.
    Derived& operator=(nxEnumValue value)
    {
        _SetAccepted(_Accepted(value));
        return static_cast<Derived&>(*this);
    }
    /// @copydoc operator=(nxEnumValue)
    Derived& operator=(unsigned value)
    {
        _SetAccepted(_Accepted(value));
        return static_cast<Derived&>(*this);
    }

    friend bool operator==(const Derived& left, const Derived& right) { return left._EqualTo(right); }
    friend bool operator==(const Derived& left, nxEnumValue right) { return left._EqualTo(right); }
    friend bool operator==(const Derived& left, unsigned right) { return left._EqualTo(right); }
    friend bool operator<(const Derived& left, const Derived& right) { return left._LessThan(right); }

protected:
    ~nxTypedEnum() = default;
    unsigned _MinValue() const override { return Minimum; }
    unsigned _MaxValue() const override { return Maximum; }

private:
    static constexpr unsigned _Accepted(unsigned value)
    {
        const bool acceptable = (Minimum < value && value < Maximum && value != NX_ENUM_NOT_REGISTERED) ||
                                value == NX_ENUM_UNDEFINED || value == NX_ENUM_NO_CHANGE;
        return acceptable ? value : static_cast<unsigned>(NX_ENUM_UNDEFINED);
    }
};

#endif
