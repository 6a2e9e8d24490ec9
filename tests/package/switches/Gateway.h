// A small gateway, as a user of the library writes one: it is built with every usual switch and must say the same.
#ifndef TESTS_PACKAGE_SWITCHES_GATEWAY_H
#define TESTS_PACKAGE_SWITCHES_GATEWAY_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/enum/nxTypedBitMask.h"
#include "core/enum/nxTypedEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/nxCustomVariableTickTable.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxValueWrapper.h"
#include "core/thread/nxMutex.h"

// Everything inline: each source file has the tables of virtual functions.
class SideEnum final : public nxTypedEnum<SideEnum, 3000000, 3000003>
{
public:
    static constexpr nxEnumValue Buy{3000001};
    static constexpr nxEnumValue Sell{3000002};

    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    std::string GetClassName() const override { return "SideEnum"; }

private:
    static bool _RegisterValues();
    static const bool _registered;
};

// The name out of line: only one source file has the table.
class VerdictEnum final : public nxTypedEnum<VerdictEnum, 3000010, 3000014>
{
public:
    static constexpr nxEnumValue Accepted{3000011};
    static constexpr nxEnumValue Adjusted{3000012};
    static constexpr nxEnumValue Rejected{3000013};

    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

class OrderFlagsBitMask final : public nxTypedBitMask<OrderFlagsBitMask, nxBitMask>
{
public:
    enum Flag : Word
    {
        PRICE_MOVED = Bit(0),
        HAS_STOP = Bit(1),
        OWN_TABLE = Bit(2),
    };
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;
    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

struct Order
{
    std::string symbol;
    SideEnum side;
    nxDecimal price;
    nxDecimal stop = nxDecimal::GetNullDecimal();
    nxValueWrapper<unsigned> volume;
    OrderFlagsBitMask flags;
};

struct Totals
{
    nxMutex mutex;
    std::map<nxErrorEnum, unsigned> errors;
    std::map<VerdictEnum, unsigned> verdicts;
    nxDecimal notional = nxDecimal(0, 4);
    nxDoubleValueWrapper turnover = 0.0;
};

using Tables = std::map<std::string, const nxVariableTickTable*>;

nxErrorEnum ReadOrder(const std::string& line, Order& order);
VerdictEnum Check(const nxVariableTickTable& table, const nxRoundingMethodEnum& method, Order& order);
std::string Describe(const Order& order, const VerdictEnum& verdict);

// What numbers come to, one line for each kind of operation.
std::vector<std::string> SumUpNumbers();

#endif
