// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxPriceManipulator.h"

#include <random>

#include "core/price/nxTickTableCursor.h"
#include "core/price/nxVariableTickTableContainer.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxTest.h"

namespace
{
nxDecimal D(const char* text) { return nxDecimal(text, '.'); }
}  // namespace

TEST(nxPriceManipulator, StepsAndRoundsByATableOrByAFixedTick)
{
    nxPriceManipulator variable;
    ASSERT_TRUE(variable.SetVariableTickTable("VTT_EURONEXT_07").IsOK());
    // price, rounded up, tick, two ticks above, one below; valid prices next below and above, and whether it is one
    using Texts = std::array<const char*, 8>;
    const std::pair<nxPriceManipulator, Texts> rows[] = {
        {variable, {"9.9985", "9.999", "0.001", "10.0045", "9.9975", "9.998", "9.999", ""}},
        {nxPriceManipulator(D("0.05")), {"9.99", "10.00", "0.05", "10.09", "9.94", "9.95", "10.00", ""}},
        {nxPriceManipulator(D("0.05")), {"-9.9", "-9.90", "0.05", "-9.80", "-9.95", "-9.95", "-9.85", "valid"}},
        {nxPriceManipulator(D("0.00000001")),  // too fine for the price's double
         {"1000000000", "1000000000.00000000", "0.00000001", "1000000000.00000002", "999999999.99999999",
          "999999999.99999999", "1000000000.00000001", "valid"}},
        {nxPriceManipulator(D("3")),  // the largest valid price, and none above
         {"9223372036854775806", "9223372036854775806", "3", "-9223372036854775804", "9223372036854775803",
          "9223372036854775803", "NX_ERR_VALUE_OUT_OF_RANGE", "valid"}},
        {nxPriceManipulator(), {"9.99", "9.99", "NULL", "9.99", "9.99", "NX_ERR_NO_MATCH", "NX_ERR_NO_MATCH", ""}},
        {nxPriceManipulator(D("0")), {"9.99", "9.99", "0", "9.99", "9.99", "NX_ERR_NO_MATCH", "NX_ERR_NO_MATCH", ""}},
        {nxPriceManipulator(D("-0.05")), {"9.99", "10.00", "-0.05", "9.99", "9.99", "9.95", "10.00", ""}},
        {nxPriceManipulator(D("0.05")),
         {"", "NULL", "0.05", "NULL", "NULL", "NX_ERR_OBJECT_IS_NULL", "NX_ERR_OBJECT_IS_NULL", ""}},
    };
    for (const auto& [manipulator, texts] : rows)
    {
        const nxDecimal price = D(texts[0]);
        SCOPED_TRACE(price);
        nxDecimal rounded = price, up = price, down = price, same = price;
        rounded.Round(manipulator, nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP));
        manipulator.Increment(up, 2);
        manipulator.Decrement(down);
        manipulator.Increment(same, 0);
        const auto describe = [](const nxErrorEnum& error, const nxDecimal& next)
        { return error.IsOK() ? next.GetAsLogString('.') : error.GetShortDescription(); };
        nxDecimal below = price, above = price;
        EXPECT_EQ(describe(manipulator.GetNextBelow(price, below), below), texts[5]);
        EXPECT_EQ(describe(manipulator.GetNextAbove(price, above), above), texts[6]);
        EXPECT_EQ(manipulator.IsValidTick(price), *texts[7] != '\0');
        const nxDecimal results[] = {rounded, manipulator.GetTickIncrement(price), up, down};
        for (std::size_t i = 0; i < std::size(results); ++i)
            EXPECT_EQ(results[i].GetAsLogString('.'), texts[i + 1]);
        EXPECT_EQ(same.GetAsLogString('.'), price.GetAsLogString('.'));
        const bool isStepped = manipulator.IncrementExact(same, 2).IsOK();
        EXPECT_EQ(isStepped, price.CompareExact(up) < 0);  // not where it wraps or does nothing
        EXPECT_TRUE(same.EqualsExactly(isStepped ? up : price));
        EXPECT_EQ(manipulator.RoundToValidTickExact(NX_ROUNDING_METHOD_UP, below = price).IsOK(), *texts[5] != 'N');
    }
}

TEST(nxPriceManipulator, TakesItsTableFromTheCatalogue)
{
    nxPriceManipulator manipulator(D("0.05"));
    EXPECT_TRUE(manipulator.SetVariableTickTable("EURONEXT_07") == NX_ERR_NOT_FOUND);
    EXPECT_FALSE(manipulator.HasVariableTickTable());
    EXPECT_TRUE(manipulator.SetVariableTickTable("VTT_EURONEXT_07").IsOK());
    EXPECT_EQ(manipulator.GetVariableTickTable(),
              nxVariableTickTableContainer::GetVariableTickTable("VTT_EURONEXT_07"));
    EXPECT_EQ(nxPriceManipulator(manipulator.GetVariableTickTable()).HasVariableTickTable(), true);
    EXPECT_FALSE(nxPriceManipulator(static_cast<const nxVariableTickTable*>(nullptr)).HasVariableTickTable());
}

TEST(nxPriceManipulator, ATableThatIsNullIsToldOnce)
{
    if (!nxInNewProcess())
        return;
    const nxCapturingLogDevice log;
    for (int i = 0; i < 2; ++i)
        nxPriceManipulator(nxVariableTickTableContainer::GetVariableTickTable("VTT_TYPO"));
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
    EXPECT_EQ(log.Count(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_WARNING)), 1U) << log;
}

TEST(nxPriceManipulator, AFixedTickTakenTooOftenWraps)
{
    nxDecimal price = D("0");
    nxPriceManipulator(D("9223372036854775807")).Increment(price, INT_MIN);
    EXPECT_EQ(price.GetValue(), 2147483648);
}

TEST(nxPriceManipulator, CountsTheTicksBetweenTwoPrices)
{
    constexpr const char* offGrid = "NX_ERR_NO_MATCH";
    nxPriceManipulator variable;
    ASSERT_TRUE(variable.SetVariableTickTable("VTT_EURONEXT_07").IsOK());
    const std::tuple<nxPriceManipulator, const char*, const char*, std::string> rows[] = {
        {nxPriceManipulator(D("0.05")), "9.95", "10", "1"},
        {nxPriceManipulator(D("0.05")), "0.1", "-0.1000", "-4"},
        {nxPriceManipulator(D("-0.05")), "-0.1", "-1", "-18"},
        {nxPriceManipulator(D("0.05")), "9.95", "10.01", offGrid},
        {nxPriceManipulator(D("0.05")), "9.95", "", "NX_ERR_OBJECT_IS_NULL"},
        {nxPriceManipulator(D("0.000001")), "0", "9223372036854775807", "NX_ERR_VALUE_OUT_OF_RANGE"},
        {nxPriceManipulator(D("1")), "0", "9223372036854775807", "9223372036854775807"},
        {nxPriceManipulator(D("1")), "-9223372036854775807", "9223372036854775807", "NX_ERR_VALUE_OUT_OF_RANGE"},
        {nxPriceManipulator(D("1")), "0", "-9223372036854775808", offGrid},
        {nxPriceManipulator(D("0")), "1", "2", offGrid},
        {nxPriceManipulator(), "1", "2", offGrid},
        {variable, "9.998", "10.005", "3"},
    };
    for (const auto& [manipulator, from, to, expected] : rows)
    {
        long long ticks = 77;
        const nxErrorEnum error = manipulator.GetTicksBetween(D(from), D(to), ticks);
        EXPECT_EQ(error.IsOK() ? std::to_string(ticks) : error.GetShortDescription(), expected) << from;
        EXPECT_TRUE(error.IsOK() || ticks == 77);
        const std::string check = manipulator.CheckPrice(D(to)).GetShortDescription();
        EXPECT_EQ(check, expected == offGrid || *to == '\0' ? expected : nxErrorEnum().GetShortDescription());
    }
}

TEST(nxPriceManipulator, CountsWhatStepsGoOver)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(3));
    for (const std::string& id : nxVariableTickTableContainer::GetVariableTickTableIDs())
    {
        SCOPED_TRACE(id);
        const nxVariableTickTable& table = *nxVariableTickTableContainer::GetVariableTickTable(id);
        nxTickTableCursor cursor(table);
        const auto count = [&](const nxDecimal& from, const nxDecimal& to)
        {
            long long ticks = 0, again = 0;
            EXPECT_TRUE(table.GetTicksBetween(from, to, ticks).IsOK() &&
                        cursor.GetTicksBetween(from, to, again).IsOK());
            EXPECT_EQ(ticks, again);
            return ticks;
        };
        for (const auto& [bound, tick] : table.GetRangeData())
            for (int i = 0; i < 4; ++i)
            {
                nxDecimal from = bound.EqualsExactly(nxDecimal::GetMaximumDecimal()) ? D("1000000") : bound;
                ASSERT_TRUE(table.GetNextBelow(from, from).IsOK());
                nxDecimal to = from;
                const int steps = static_cast<int>(random() >> (33 + random() % 30));
                table.Increment(to, steps);
                ASSERT_EQ(count(from, to), steps) << from;
                ASSERT_EQ(count(to, from), -steps);
                ASSERT_EQ(count(nxDecimal::Negate(from), nxDecimal::Negate(to)), -steps);
                ASSERT_EQ(count(nxDecimal::Negate(from), to), count(D("0"), to) + count(D("0"), from));
            }
    }
}
