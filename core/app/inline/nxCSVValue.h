// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INLINE_NXCSVVALUE_H
#define CORE_APP_INLINE_NXCSVVALUE_H

#include <algorithm>
#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/nxErrorEnum.h"
#include "core/text/nxInitalizers.h"
#include "core/text/nxStringHelper.h"

/// How the field of a CSV row becomes a value: exactly, or not at all.
class nxCSVValue
{
public:
    nxCSVValue() = delete;

    /// @return NX_ERR_INVALID_PARAMETER for another text, NX_ERR_VALUE_OUT_OF_RANGE for one that the type does not hold;
    ///         @p value is then untouched.
    template <class Value>
    static nxErrorEnum Read(std::string_view text, Value& value, char decimalSeparator)
    {
        if constexpr (_isNullable<Value>)
            if (text.empty())
            {
                value = _GetNull<Value>();
                return nxErrorEnum();
            }
        if constexpr (requires { nxStringHelper::SetFromStringExact(text, value, decimalSeparator); })
            return nxStringHelper::SetFromStringExact(text, value, decimalSeparator);
        else if constexpr (std::same_as<Value, nxDoubleValueWrapper>)
            return value.SetFromStringExact(_GetWithPoint(text, decimalSeparator));
        else if constexpr (requires { value.SetFromISOString(std::string()); })
            return _ReadDate(std::string(text), value);
        else if constexpr (requires { nxStringHelper::SetFromStringExact(text, value); })
            return nxStringHelper::SetFromStringExact(text, value);
        else
            return value.SetFromString(std::string(text));
    }

private:
    template <class Value>
    static constexpr bool _hasNullInstance = requires
    {
        Value::GetNullInstance();
    };
    template <class Value>
    static constexpr bool _isNullable =
        _hasNullInstance<Value> || std::constructible_from<Value, nxNullInitalizer> || std::derived_from<Value, nxEnum>;

    template <class Value>
    static Value _GetNull()
    {
        // First, because the tag makes "no change" of a wrapper of a double.
        if constexpr (_hasNullInstance<Value>)
            return Value::GetNullInstance();
        else if constexpr (std::derived_from<Value, nxEnum>)
            return Value();
        else
            return Value(nxNullInitalizer{});
    }

    // The form of configuration, or that of ISO 8601.
    template <class Value>
    static nxErrorEnum _ReadDate(const std::string& text, Value& value)
    {
        if constexpr (requires { value.SetFromString(text); })
            if (value.SetFromString(text).IsOK())
                return nxErrorEnum();
        return value.SetFromISOString(text);
    }

    // Of a type that reads only the point.
    static std::string _GetWithPoint(std::string_view text, char decimalSeparator)
    {
        std::string number(text);
        if (decimalSeparator == '.')
            return number;
        if (number.find('.') != std::string::npos)
            return {};
        std::replace(number.begin(), number.end(), decimalSeparator, '.');
        return number;
    }
};

#endif
