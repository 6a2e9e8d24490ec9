#include <deque>

#include "Gateway.h"
#include "core/price/nxTickTableCursor.h"
#include "core/text/nxStringHelper.h"
#include "core/text/nxStringParser.h"

namespace
{
nxDecimal ReadPrice(const std::string& text, nxErrorEnum& error)
{
    nxDecimal price = nxDecimal::GetNullDecimal();
    if (const nxErrorEnum read = price.SetFromString(text, '.'); !read.IsOK())
        error = read;
    return price;
}
}  // namespace

nxErrorEnum ReadOrder(const std::string& line, Order& order)
{
    std::deque<std::string> fields;
    nxStringParser::ExtractAllSubstrings(line, fields, true, ',');
    if (fields.size() < 4 || fields.size() > 5)
        return nxErrorEnum(NX_ERR_ORDER_INVALID_ORDER);
    Order read;
    nxErrorEnum error;
    read.symbol = fields[0];
    if (!read.side.SetFromString("GW_" + fields[1]))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (error = read.volume.SetFromString(fields[2]); !error.IsOK())
        return error;
    read.price = ReadPrice(fields[3], error);
    if (fields.size() == 5)
    {
        read.stop = ReadPrice(fields[4], error);
        read.flags |= OrderFlagsBitMask::HAS_STOP;
    }
    if (error.IsOK())
        order = read;
    return error;
}

VerdictEnum Check(const nxVariableTickTable& table, const nxRoundingMethodEnum& method, Order& order)
{
    if (!order.price.IsPositive() || !order.volume.IsValid() || order.volume == 0u)
        return VerdictEnum(VerdictEnum::Rejected);
    nxTickTableCursor cursor(table);
    const nxDecimal asked = order.price;
    cursor.RoundToValidTick(method, order.price);
    if (order.price == asked)
        return VerdictEnum(VerdictEnum::Accepted);
    order.flags |= OrderFlagsBitMask::PRICE_MOVED;
    VerdictEnum verdict;
    return verdict.SetFromString("GW_ADJUSTED") ? verdict : VerdictEnum(VerdictEnum::Rejected);
}

std::string Describe(const Order& order, const VerdictEnum& verdict)
{
    std::string text = verdict.GetLongDescription() + ' ' + order.symbol + ' ' + order.side.GetLongDescription() + ' ';
    nxStringHelper::AppendAsString(text, order.price);
    text += " stop " + order.stop.GetAsLogString('.') + " volume " + order.volume.GetAsLogString() + " [" +
            order.flags.GetShortDescription(", ") + ']';
    const nxEnum& base = verdict;
    return text + (base.IsSpecificTypeForInstance() && base.GetClassName() == "VerdictEnum" ? "" : " ?");
}
