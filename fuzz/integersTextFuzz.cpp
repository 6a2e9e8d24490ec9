// SPDX-License-Identifier: Apache-2.0
// Reading integers of every width against the rule one digit at a time, and what is printed read back.

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "core/text/nxStringHelper.h"
#include "core/text/nxValueWrapper.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

template <class Integer>
bool ReadPlainly(std::string_view text, Integer& value)
{
    const bool negative = std::is_signed_v<Integer> && !text.empty() && text.front() == '-';
    text.remove_prefix(negative ? 1 : 0);
    std::make_unsigned_t<Integer> sum = 0;
    for (const char c : text)
    {
        if (c < '0' || c > '9')
            return false;
        sum = static_cast<std::make_unsigned_t<Integer>>(sum * 10ULL + static_cast<unsigned>(c - '0'));
    }
    if (text.empty())
        return false;
    value = static_cast<Integer>(negative ? 0 - static_cast<unsigned long long>(sum) : sum);
    return true;
}

// Against the standard library's reader, which knows the limits of each type.
template <class Integer>
void CheckExact(const std::string& text)
{
    Integer expected = 42;
    Integer value = 42;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), expected);
    const bool isNumber = end == text.data() + text.size() && error != std::errc::invalid_argument;
    const nxErrorEnum right = !isNumber              ? nxErrorEnum(NX_ERR_INVALID_PARAMETER)
                              : error == std::errc() ? nxErrorEnum()
                                                     : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    Require(nxStringHelper::SetFromStringExact(text, value) == right);
    Require(value == (right.IsOK() ? expected : Integer{42}));

    nxValueWrapper<Integer> wrapper(Integer{42});
    const bool isMark = right.IsOK() && !nxValueWrapper<Integer>(expected).IsValid();
    Require(wrapper.SetFromStringExact(text) == (isMark ? nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE) : right));
    Require(wrapper == (isMark ? Integer{42} : value));
}

template <class Integer>
void Check(const std::string& text)
{
    CheckExact<Integer>(text);
    Integer expected = 42;
    Integer value = 42;
    const bool readable = ReadPlainly(text, expected);
    Require(nxStringHelper::SetFromString(text, value).IsOK() == readable);
    Require(value == expected);

    const std::string printed = nxStringHelper::GetAsString(value);
    Integer back = 0;
    Require(nxStringHelper::SetFromString(printed, back).IsOK() && back == value);
    Require(printed.size() == 1 || printed[0] != '0');

    nxValueWrapper<Integer> wrapper;
    Require(wrapper.SetFromString(text).IsOK() == readable);
    Require(readable ? wrapper == expected : wrapper.IsNull());
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view view(reinterpret_cast<const char*>(data), size);
    unsigned expected = 42;
    unsigned value = 42;
    const bool readable = ReadPlainly(view, expected);
    Require(nxStringHelper::SetFromStringView(view, value).IsOK() == readable && value == expected);

    const std::string text(view);
    CheckExact<signed char>(text);
    CheckExact<unsigned char>(text);
    Check<short>(text);
    Check<unsigned short>(text);
    Check<int>(text);
    Check<unsigned>(text);
    Check<long>(text);
    Check<long long>(text);
    Check<unsigned long long>(text);
    return 0;
}
