// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <deque>
#include <iostream>
#include <map>

#include "Gateway.h"
#include "core/log/nxLogMacros.h"
#include "core/testing/nxCapturingLogDevice.h"

const bool SideEnum::_registered = _RegisterValues();
bool SideEnum::_RegisterValues()
{
    static constexpr ValueTexts values[] = {{Buy, "GW_BUY", "buy"}, {Sell, "GW_SELL", "sell"}};
    return _RegisterAll(values);
}

const bool OrderFlagsBitMask::_registered = _RegisterValues();
bool OrderFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {{PRICE_MOVED, "PRICE_MOVED", "price moved"},
                                          {HAS_STOP, "HAS_STOP", "has a stop"}};
    return _RegisterFlags("OrderFlagsBitMask", flags);
}
std::string OrderFlagsBitMask::GetClassName() const { return "OrderFlagsBitMask"; }

namespace
{
// What the workers share.
struct Totals
{
    nxMutex mutex;
    nxSemaphore finished{0};
    std::map<std::string, std::string> answers;
    nxDecimal notional = nxDecimal(0, 4);
    nxDoubleValueWrapper volume = 0.0;
};

// Handles every second order.
class Worker : public nxThread
{
public:
    Worker(Totals& totals, const nxVariableTickTable& table, nxEnumValue method, unsigned first)
        : _totals(totals), _table(table), _method(method), _first(first)
    {
    }

    nxErrorEnum Run() override
    {
        for (unsigned n = _first; n < 60; n += 2)
        {
            const nxDecimal price = nxDecimal::ConstructFromValueAndDecimalPlaces(997 * n + 3, 3);
            const std::string line = std::string(n % 7 == 0   ? "HOLD,"
                                                 : n % 2 == 0 ? "BUY,"
                                                              : "SELL,") +
                                     nxStringHelper::GetAsString(n * 100) + ',' + price.GetAsString('.');
            const std::string answer = Handle(line + (n % 3 == 0 ? ",1.5" : n % 5 == 0 ? ",1.2.3" : ""));
            const nxMutexGuard guard(_totals.mutex);
            _totals.answers[line] = answer;
        }
        return _totals.finished.Post();
    }

private:
    std::string Handle(const std::string& line)
    {
        std::deque<std::string> fields;
        nxStringParser::ExtractAllSubstrings(line, fields, true, ',');
        SideEnum side;
        nxValueWrapper<unsigned> volume;
        nxDecimal price, stop = nxDecimal::GetNullDecimal();
        OrderFlagsBitMask flags;
        nxErrorEnum error = volume.SetFromString(fields[1]);
        if (!side.SetFromString("GW_" + fields[0]))
            error = NX_ERR_ORDER_INVALID_ORDER;
        if (error.IsOK() && fields.size() == 4)
        {
            error = stop.SetFromString(fields[3], '.');
            flags |= OrderFlagsBitMask::HAS_STOP;
        }
        if (error.IsOK())
            error = price.SetFromString(fields[2], '.');
        if (!error.IsOK())
        {
            NX_LOG(NX_LOG_LEVEL_WARNING) << line << ": " << error;
            return error.GetLongDescription();
        }
        const nxDecimal asked = price;
        nxTickTableCursor cursor(_table);
        cursor.RoundToValidTick(_method, price);
        if (price != asked)
            flags |= OrderFlagsBitMask::PRICE_MOVED;
        const nxMutexGuard guard(_totals.mutex);
        _totals.notional += price * nxDecimal(static_cast<unsigned>(volume), 4);
        _totals.volume += static_cast<unsigned>(volume);
        const nxEnum& base = side;
        return side.GetLongDescription() + ' ' + price.GetAsString('.') + " stop " + stop.GetAsLogString('.') +
               " volume " + volume.GetAsLogString() + " [" + flags.GetShortDescription(", ") + ']' +
               (base.IsSpecificTypeForInstance() && base.GetClassName() == "SideEnum" ? "" : " ?");
    }

    Totals& _totals;
    const nxVariableTickTable& _table;
    const nxRoundingMethodEnum _method;
    const unsigned _first;
};

// An object whose class and address are known here alone: the compiler sees through its virtual functions.
nxEnumValue ReadMethod(const nxCmdLineArgs& args)
{
    nxRoundingMethodEnum method(NX_ROUNDING_METHOD_NEAREST);
    if (args.IsArgDefined("method") && !method.SetFromString("NX_ROUNDING_METHOD_" + args.GetArgValue("method")))
        return NX_ENUM_UNDEFINED;
    return method.GetEnumValue();
}
}  // namespace

int main(int, char** argv)
{
    nxCmdLineArgs& args = nxCmdLineArgs::GetInstance();
    args.Initialise(argv, environ);
    const nxCapturingLogDevice device;
    const nxVariableTickTable& table = *nxVariableTickTableContainer::GetVariableTickTable("VTT_CHIX_FESE1");
    Totals totals;
    Worker first(totals, table, ReadMethod(args), 0), second(totals, table, ReadMethod(args), 1);
    for (Worker* const worker : {&first, &second})
        if (!worker->Create().IsOK())
            return 2;
    for (int n = 0; n < 2; ++n)
        while (!totals.finished.Wait().IsOK())
            ;
    if (!first.Wait().IsOK() || !second.Wait().IsOK())
        return 3;
    for (const auto& [line, answer] : totals.answers)
        std::cout << line << ": " << answer << '\n';
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(3);
    std::cout << SumUpNumbers() << '\n'
              << GetPluginAnswers() << '\n'
              << totals.notional << ' ' << totals.volume << ' ' << device.GetRecords().size() << " records\n";
    return 0;
}
