// SPDX-License-Identifier: Apache-2.0
#include "core/log/inline/nxLogTexts.h"

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxExchangeRate.h"
#include "core/numeric/nxMoney.h"
#include "core/numeric/nxRatio.h"
#include "core/text/nxStringValue.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxDateTimeSpan.h"
#include "core/time/nxTimeStamp.h"

namespace
{
template <class Make>
std::string MakeText(const Make& make) noexcept
{
    try
    {
        return make();
    }
    catch (...)
    {
        return std::string();
    }
}
}  // namespace

std::string nxLogTexts::Get(const nxBitMask& mask) noexcept
{
    return MakeText([&mask] { return mask.GetShortDescription(" "); });
}

std::string nxLogTexts::Get(const nxBitMask64& mask) noexcept
{
    return MakeText([&mask] { return mask.GetShortDescription(" "); });
}

std::string nxLogTexts::Get(const nxMoney& money) noexcept
{
    return MakeText([&money] { return money.GetAsLogString('.'); });
}

std::string nxLogTexts::Get(const nxCurrency& currency) noexcept
{
    return MakeText([&currency] { return currency.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxRatio& ratio) noexcept
{
    return MakeText([&ratio] { return ratio.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxExchangeRate& rate) noexcept
{
    return MakeText([&rate] { return rate.GetAsLogString('.'); });
}

std::string nxLogTexts::Get(const nxStringValue& value) noexcept
{
    return MakeText([&value] { return value.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxDate& date) noexcept
{
    return MakeText([&date] { return date.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxTime& time) noexcept
{
    return MakeText([&time] { return time.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxDateTime& dateTime) noexcept
{
    return MakeText([&dateTime] { return dateTime.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxDateTimeSpan& span) noexcept
{
    return MakeText([&span] { return span.GetAsLogString(); });
}

std::string nxLogTexts::Get(const nxTimeStamp& timeStamp) noexcept
{
    return MakeText(
        [&timeStamp]
        {
            char text[nxTimeStamp::TextSize];
            const unsigned written = timeStamp.GetAsStringFast(text, sizeof text);
            return written == 0 ? std::string() : std::string(text, written - 1);
        });
}
