#include "core/log/nxLogTexts.h"

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/numeric/nxMoney.h"

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
