// SPDX-License-Identifier: Apache-2.0
#include "core/app/inline/nxOptionType.h"

#include <algorithm>
#include <iterator>

namespace
{
struct DurationUnit
{
    std::string_view name;
    std::int64_t nanoseconds;
};

// The largest unit first.
constexpr DurationUnit durationUnits[] = {{"h", 3'600'000'000'000}, {"min", 60'000'000'000}, {"s", 1'000'000'000},
                                          {"ms", 1'000'000},        {"us", 1'000},           {"ns", 1}};
}  // namespace

nxErrorEnum nxOptionReader::ReadFlag(std::string_view text, bool& value)
{
    std::string word(text);
    nxStringHelper::ToUpper(word);
    const bool isOn = word == "TRUE" || word == "YES";
    if (!isOn && word != "FALSE" && word != "NO")
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    value = isOn;
    return nxErrorEnum();
}

nxErrorEnum nxOptionReader::ReadNanoseconds(std::string_view text, std::int64_t& value)
{
    const std::string_view name = text.substr(std::min(text.size(), text.find_last_of("0123456789") + 1));
    const auto* const unit = std::find_if(std::begin(durationUnits), std::end(durationUnits),
                                          [name](const DurationUnit& each) { return each.name == name; });
    if (unit == std::end(durationUnits))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    long long count = 0;
    const std::string digits(text.substr(0, text.size() - name.size()));
    if (const nxErrorEnum error = nxStringHelper::SetFromStringExact(digits, count); !error.IsOK())
        return error;
    std::int64_t nanoseconds = 0;
    if (__builtin_mul_overflow(count, unit->nanoseconds, &nanoseconds))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    value = nanoseconds;
    return nxErrorEnum();
}

std::string nxOptionReader::GetNanosecondsText(std::int64_t value)
{
    const auto* const unit =
        value == 0 ? &durationUnits[2]
                   : std::find_if(std::begin(durationUnits), std::end(durationUnits),
                                  [value](const DurationUnit& each) { return value % each.nanoseconds == 0; });
    return nxStringHelper::GetAsString(static_cast<long long>(value / unit->nanoseconds)).append(unit->name);
}
