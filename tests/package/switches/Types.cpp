#include "Gateway.h"

const bool SideEnum::_registered = _RegisterValues();
bool SideEnum::_RegisterValues()
{
    static constexpr ValueTexts values[] = {{Buy, "GW_BUY", "buy"}, {Sell, "GW_SELL", "sell"}};
    return _RegisterAll(values);
}

const bool VerdictEnum::_registered = _RegisterValues();
bool VerdictEnum::_RegisterValues()
{
    static constexpr ValueTexts values[] = {{Accepted, "GW_ACCEPTED", "accepted"},
                                            {Adjusted, "GW_ADJUSTED", "adjusted"},
                                            {Rejected, "GW_REJECTED", "rejected"}};
    return _RegisterAll(values);
}
std::string VerdictEnum::GetClassName() const { return "VerdictEnum"; }

const bool OrderFlagsBitMask::_registered = _RegisterValues();
bool OrderFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {{PRICE_MOVED, "PRICE_MOVED", "price moved"},
                                          {HAS_STOP, "HAS_STOP", "has a stop"},
                                          {OWN_TABLE, "OWN_TABLE", "own tick table"}};
    return _RegisterFlags("OrderFlagsBitMask", flags);
}
std::string OrderFlagsBitMask::GetClassName() const { return "OrderFlagsBitMask"; }
