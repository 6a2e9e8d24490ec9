// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVariableTickTable.h"

#include <array>
#include <optional>

#include "core/price/nxPriceManipulator.h"
#include "core/price/nxTickTableCursor.h"
#include "core/price/nxVariableTickTableContainer.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/price/transcribedTickTable.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
nxDecimal D(const char* text) { return nxDecimal(text, '.'); }
nxDecimal D(long long mantissa, int places)
{
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(places));
}
std::string Text(const nxDecimal& decimal) { return decimal.GetAsLogString('.'); }

// To the last place: status, mantissa and number of places.
std::string Exact(const nxDecimal& decimal)
{
    return decimal.IsValid() ? std::to_string(decimal.GetValue()) + "e-" + std::to_string(decimal.GetDecimalPlaces())
                             : decimal.GetAsLogString('.');
}

// A table of any bands, with its protected operations in reach.
class Table : public nxVariableTickTable
{
public:
    using nxVariableTickTable::_AddRange;
    using nxVariableTickTable::_AddRanges;
    using nxVariableTickTable::_AddTopRange;
    using nxVariableTickTable::_CheckConstraints;
    using nxVariableTickTable::_DecreasePrice;
    using nxVariableTickTable::_FindRange;
    using nxVariableTickTable::_GetIncrementForPrice;
    using nxVariableTickTable::_IncreasePrice;

    Table() = default;
    explicit Table(const char* bands) { _AddRanges(bands); }

    long Band(const nxDecimal& price) const { return _FindRange(price) - GetRangeData().begin(); }
    auto At(int band) const { return GetRangeData().begin() + band; }
};

// The last one leaves prices alone.
const nxRoundingMethodEnum methods[] = {NX_ROUNDING_METHOD_DOWN, NX_ROUNDING_METHOD_UP, NX_ROUNDING_METHOD_NEAREST,
                                        NX_ROUNDING_METHOD_MODIFIED_NEAREST, nxRoundingMethodEnum()};
}  // namespace

TEST(nxVariableTickTable, TicksStepsAndRoundingsAtAndAroundABound)
{
    // price; tick there, a step up and a step down; rounded down, up, to the nearest and to the modified nearest;
    // whether it is valid, and the valid prices next to it
    const char* const rows[][4] = {
        {"9.99", "0.01 10.00 9.98", "9.99 9.99 9.99 9.99", "valid 9.98 10.00"},
        {"9.995", "0.01 10.005 9.985", "9.99 10.00 10.00 9.99", "9.99 10.00"},
        {"10", "0.01 10.01 9.99", "10.00 10.00 10.00 10.00", "valid 9.99 10.05"},
        {"10.005", "0.01 10.055 9.995", "10.00 10.01 10.01 10.00",
         "10.00 10.05"},  // nearer to the bound than a lower tick
        {"10.01", "0.05 10.06 10.00", "10.00 10.05 10.00 10.00", "10.00 10.05"},
        {"10.04", "0.05 10.09 9.99", "10.00 10.05 10.05 10.05",
         "10.00 10.05"},  // 10.03 is above 10, so the larger step
        {"10.025", "0.05 10.075 9.975", "10.00 10.05 10.05 10.00", "10.00 10.05"},
        {"100.05", "0.50 100.55 100.00", "100.00 100.50 100.00 100.00", "100.00 100.50"},
        {"-0.005", "0.01 0.005 -0.015", "-0.01 0.00 -0.01 0.00", "-0.01 0.00"},
        {"-10.01", "0.05 -10.00 -10.06", "-10.05 -10.00 -10.00 -10.00", "-10.05 -10.00"},
        {"1.200", "0.01 1.21 1.19", "1.20 1.20 1.20 1.20", "valid 1.19 1.21"},  // zeros are dropped, and no other digit
    };
    const Table table("10 0.01; 100 0.05; 0.50");
    for (const auto& [text, steps, roundings, neighbours] : rows)
    {
        nxDecimal up = D(text), down = up;
        const std::string tick = Text(table.GetTickIncrement(up));
        table.Increment(up);
        table.Decrement(down);
        EXPECT_EQ(tick + ' ' + Text(up) + ' ' + Text(down), steps) << text;
        std::string rounded;
        for (const nxRoundingMethodEnum& method : std::span(methods).first(4))
        {
            nxDecimal price = D(text);
            table.RoundToValidTick(method, price);
            rounded.append(rounded.empty() ? "" : " ").append(Text(price));
        }
        EXPECT_EQ(rounded, roundings) << text;
        EXPECT_TRUE(table.GetNextBelow(D(text), down).IsOK() && table.GetNextAbove(D(text), up).IsOK()) << text;
        EXPECT_EQ((table.IsValidTick(D(text)) ? "valid " : "") + Text(down) + ' ' + Text(up), neighbours) << text;
    }
}

TEST(nxVariableTickTable, APriceWithoutABandHasANullTickAndIsReported)
{
    const Table empty, whole("10 0.01; 0.05");
    Table topless;
    topless._AddRange(D("10"), D("0.01"));
    const std::pair<const Table*, nxDecimal> rows[] = {{&empty, D("5")},
                                                       {&topless, D("10.01")},
                                                       {&topless, D("-11")},
                                                       {&whole, D(INT64_MIN, 0)},
                                                       {&whole, D(INT64_MIN, 2)}};
    nxCapturingLogDevice log;
    for (const auto& [table, before] : rows)
    {
        SCOPED_TRACE(Exact(before));
        nxDecimal price = before;
        nxTickTableCursor cursor(*table);
        EXPECT_TRUE(table->GetTickIncrement(price).IsNull());
        EXPECT_TRUE(cursor.GetTickIncrement(price).IsNull());
        table->Increment(price);
        table->Decrement(price);
        table->Increment(price, INT_MIN);  // reports once, not two billion times
        table->RoundToValidTick(methods[1], price);
        cursor.Increment(price);
        cursor.RoundToValidTick(methods[1], price);
        EXPECT_FALSE(table->IsValidTick(price) || cursor.IsValidTick(price));
        EXPECT_TRUE(table->GetNextAbove(price, price) == NX_ERR_NO_MATCH);
        EXPECT_TRUE(cursor.GetNextBelow(price, price) == NX_ERR_NO_MATCH);
        EXPECT_EQ(Exact(price), Exact(before));
        EXPECT_EQ(table->NumberOfDecimalPlaces(price), 0);
        EXPECT_EQ(table->Band(price), static_cast<long>(table->GetRangeData().size()));
    }
    // A run of steps ends with the bands. A run from a null price ends at once.
    nxDecimal price = D("9.00"), none = nxDecimal::GetNullDecimal();
    topless.Increment(price, INT_MAX);
    EXPECT_EQ(Text(price), "10.01");
    whole.Increment(none, INT_MIN);
    EXPECT_TRUE(none.IsNull());

    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
    const nxLogMatcher isReport = [](const nxCapturedRecord& record)
    {
        return record.level == NX_LOG_LEVEL_FATAL && record.text == "Fatal error in variable tick table" &&
               record.sourceFile == "core/trunk/nxVariableTickTable" && record.line == 108;
    };
    EXPECT_EQ(log.Count(isReport), 8 * std::size(rows) + 1) << log;
}

TEST(nxVariableTickTable, ConstraintsRefuseWhatIsNotATable)
{
    for (const char* bands :
         {"0.01", "0.00001 0.01; 0.05", "10 0.01; 10.0001 0.02; 0.05", "9223372036854775806 0.01; 1"})
        EXPECT_TRUE(Table(bands)._CheckConstraints()) << bands;
    nxCapturingLogDevice log;
    const char* const refused[] = {"0",
                                   "-0.01",
                                   "",
                                   "0 0.01; 0.05",
                                   "10 0.01; 10.0 0.02; 0.05",
                                   "10 0; 0.05",
                                   "10 x; 0.05",
                                   "10; 0.05",
                                   "9223372036854775807 0.01; 1"};
    for (const char* bands : refused)
        EXPECT_FALSE(Table(bands)._CheckConstraints()) << bands;
    Table topless;
    EXPECT_FALSE(topless._CheckConstraints());
    topless._AddRange(D("10"), D("0.01"));
    EXPECT_FALSE(topless._CheckConstraints());
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
    EXPECT_EQ(log.Count(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_ERROR)), std::size(refused)) << log;
    topless._AddTopRange(D("0.05"));
    EXPECT_TRUE(topless._CheckConstraints());
    topless._AddRange(D("20"), D("0.05"));
    EXPECT_FALSE(topless._CheckConstraints());
}

TEST(nxVariableTickTable, BandsAddedLaterCountAtOnce)
{
    EXPECT_EQ(Text(Table("1 0.5; 2 0.05; 1").GetMinimumTickIncrement()), "0.05");
    Table table;
    EXPECT_TRUE(table.GetMinimumTickIncrement().IsNull());
    table._AddRange(D("10"), D("0.01"));
    EXPECT_EQ(Text(table.GetTickIncrement(D("9"))), "0.01");
    for (int i = 11; i < 100; ++i)  // moves the bands in memory
        table._AddRange(nxDecimal(i, 0), D(i, 2));
    EXPECT_EQ(Text(table.GetTickIncrement(D("98.5"))), "0.98");  // nearer to 98 than a tick of 0.98
    table._AddTopRange(D("2"));
    EXPECT_EQ(Text(table.GetTickIncrement(D("98.99"))), "0.99");
    EXPECT_EQ(Text(table.GetTickIncrement(D("500"))), "2");
    // Out of order the first bound that is not below the price counts.
    const Table disordered("10 0.01; 5 0.02; 20 0.05; 0.1");
    EXPECT_EQ(disordered.Band(D("7")), 0);
    EXPECT_EQ(disordered.Band(D("11")), 2);
}

// A subclass may observe or refuse the memory of the last band; results do not depend on it.
TEST(nxVariableTickTable, TheMemoryOfTheLastBandGoesThroughTheVirtualCall)
{
    class Watched : public Table
    {
    public:
        explicit Watched(bool remembers, const char* bands = "10 0.01; 100 0.05; 0.5")
            : Table(bands), _remembers(remembers)
        {
        }
        mutable int calls = 0;

    protected:
        void _SetCache(iterator range) const override
        {
            ++calls;
            if (_remembers)
                nxVariableTickTable::_SetCache(range);
        }

    private:
        bool _remembers;
    };
    // The second table has numbers that its integers do not reach.
    const Watched watched(true), fine(true, "0.0000000000000001 0.0000000000000001; 10 0.01; 0.05"), forgetful(false);
    const std::tuple<const Watched*, const char*, const char*, int> rows[] = {
        {&watched, "9", "0.01", 0},   {&watched, "10", "0.01", 0},  {&watched, "10.005", "0.01", 1},
        {&watched, "11", "0.05", 1},  {&watched, "100", "0.05", 1}, {&watched, "100.5", "0.5", 2},
        {&watched, "-11", "0.05", 3}, {&watched, "", "0.01", 4},    {&fine, "11", "0.05", 1},
        {&fine, "-13", "0.05", 1},    {&fine, "9", "0.01", 2},      {&fine, "0.0000000000000001", "0.000000000000", 3},
    };
    for (const auto& [table, price, tick, calls] : rows)
    {
        EXPECT_EQ(Text(table->GetTickIncrement(D(price))), tick) << price;
        EXPECT_EQ(table->calls, calls) << price;
    }
    for (int calls = 0; calls < 4;)
    {
        EXPECT_EQ(Text(forgetful.GetTickIncrement(D("12"))), "0.05");
        EXPECT_GE(forgetful.calls, ++calls) << "what refuses to remember is asked every time";
        nxDecimal stepped = D("99.95");
        forgetful.Increment(stepped);
        EXPECT_EQ(Text(stepped), "100.00");
    }
}

namespace
{
// Prices near every point at which a decision changes, also at other scales, and prices of every kind.
class PriceSource
{
public:
    PriceSource(const nxVariableTickTable& table, std::uint64_t seed) : _bands(table.GetRangeData()), _random(seed) {}

    nxDecimal Next()
    {
        nxDecimal price = Any();
        if (Below(3) == 0)
            price.InvertSign();
        return price;
    }

    std::uint64_t Below(std::uint64_t end) { return _random() % end; }

private:
    nxDecimal Any()
    {
        const auto& [bound, increment] = _bands[Below(_bands.size())];
        switch (Below(12))
        {
            case 0:  // anything at all
                return D(static_cast<long long>(_random()), static_cast<int>(Below(256)));
            case 1:  // anything that looks like a number
                return D(static_cast<long long>(_random() >> Below(64)), static_cast<int>(Below(20)));
            case 2:  // near the largest numbers that the quick paths take
                return D((1LL << 49) / Power(Below(16)) + Small(), static_cast<int>(Below(16)));
            case 3:
                return D(INT64_MAX - static_cast<long long>(Below(5)), static_cast<int>(Below(20)));
            case 4:
                if (Below(8) == 0)
                    return Below(2) == 0 ? nxDecimal::GetNullDecimal() : nxDecimal::GetNoChangeDecimal();
                return D(static_cast<long long>(Below(200)), static_cast<int>(Below(19)));
            case 5:  // anywhere in a band
            case 6:
                return D(static_cast<long long>(Below(static_cast<std::uint64_t>(bound.GetValue()))),
                         bound.GetDecimalPlaces());
            default:  // near a bound, or a tick above it
                nxDecimal price = Below(2) == 0 ? bound : bound + increment;
                const auto places = static_cast<unsigned char>(Below(18));
                if (places < price.GetDecimalPlaces() || price.GetIntegerPart() < Power(17U - places))
                    price.SetDecimalPlaces(places, false);
                const auto mantissa =
                    static_cast<std::uint64_t>(price.GetValue()) + static_cast<std::uint64_t>(Small());
                return D(static_cast<long long>(mantissa), price.GetDecimalPlaces());
        }
    }
    static long long Power(std::uint64_t places)
    {
        return static_cast<long long>(nxPowersOfTen::GetInteger(static_cast<unsigned>(places)));
    }
    long long Small() { return static_cast<long long>(Below(7)) - 3; }

    const std::vector<std::pair<nxDecimal, nxDecimal>>& _bands;
    std::mt19937_64 _random;
};

// All ways give the same result for a price.
template <class... Ways>
void ExpectEach(const nxDecimal& price, const nxDecimal& expected, const Ways&... ways)
{
    const auto expect = [&](const auto& way)
    {
        nxDecimal result = price;
        way(result);
        ASSERT_EQ(Exact(result), Exact(expected));
    };
    (expect(ways), ...);
}

// All ways give the result if it is exact. Otherwise they refuse the price and leave it alone.
template <class... Ways>
void ExpectExact(const nxDecimal& price, const nxDecimal& expected, bool isExact, const Ways&... ways)
{
    ExpectEach(price, isExact ? expected : price, [&](nxDecimal& p) { EXPECT_EQ(ways(p).IsOK(), isExact); }...);
}

// Compares every operation with the transcription, on one table.
void CompareWithTranscription(const nxVariableTickTable& table, std::uint64_t seed, std::uint64_t operations)
{
    const TranscribedTickTable rules(table.GetRangeData());
    PriceSource source(table, seed);
    nxTickTableCursor cursor(table);
    const nxPriceManipulator manipulator(&table);
    nxDecimal walking = source.Next();
    for (; operations != 0; --operations)
    {
        // Half of the prices come from stepping on, as those of a market do.
        const nxDecimal price = source.Below(2) == 0 ? walking : source.Next();
        const nxRoundingMethodEnum& method = methods[source.Below(5)];
        const bool up = source.Below(2) == 0;
        const int mostTicks = source.Below(16) == 0 ? 100 : 4;  // rarely enough for them to be taken together
        const int ticks = static_cast<int>(source.Below(2U * static_cast<unsigned>(mostTicks) + 1)) - mostTicks;
        SCOPED_TRACE("price " + Exact(price) + ", " + method.GetShortDescription() + ", ticks " +
                     std::to_string(ticks) + (up ? ", up" : ", down"));

        const nxDecimal tick = rules.Tick(price);
        ASSERT_NO_FATAL_FAILURE(ExpectEach(
            price, tick, [&](nxDecimal& p) { p = table.GetTickIncrement(p); },
            [&](nxDecimal& p) { p = cursor.GetTickIncrement(p); },
            [&](nxDecimal& p) { table.GetTickIncrement(std::span(&price, 1), std::span(&p, 1)); }));
        ASSERT_EQ(table.NumberOfDecimalPlaces(price), rules.Places(price));
        ASSERT_EQ(cursor.NumberOfDecimalPlaces(price), rules.Places(price));
        ASSERT_NO_FATAL_FAILURE(ExpectEach(
            price, rules.Rounded(price, method), [&](nxDecimal& p) { table.RoundToValidTick(method, p); },
            [&](nxDecimal& p) { cursor.RoundToValidTick(method, p); },
            [&](nxDecimal& p) { table.RoundToValidTick(method, std::span(&p, 1)); }));

        const nxDecimal rounded = rules.Rounded(price, method);
        ASSERT_NO_FATAL_FAILURE(ExpectExact(
            price, rounded, price.IsValid() && method != methods[4] && rules.IsExact(price, rounded, tick, 0),
            [&](nxDecimal& p) { return table.RoundToValidTickExact(method, p); },
            [&](nxDecimal& p) { return cursor.RoundToValidTickExact(method, p); }));

        const bool isAsked = price.IsValid() && price.GetValue() != INT64_MIN;  // others have no band
        const bool isValid = isAsked && rules.IsValid(price);
        ASSERT_EQ(table.IsValidTick(price), isValid);
        ASSERT_EQ(cursor.IsValidTick(price), isValid);
        ASSERT_EQ(manipulator.IsValidTick(price), isValid);
        if (isAsked && source.Below(16) == 0)  // the oracle is slow
        {
            const nxDecimal next = rules.Next(price, up);
            const auto getNext = [&](auto& way, nxDecimal& p)
            { EXPECT_EQ((up ? way.GetNextAbove(p, p) : way.GetNextBelow(p, p)).IsOK(), !next.IsNull()); };
            ASSERT_NO_FATAL_FAILURE(ExpectEach(
                price, next.IsNull() ? price : next, [&](nxDecimal& p) { getNext(table, p); },
                [&](nxDecimal& p) { getNext(cursor, p); }, [&](nxDecimal& p) { getNext(manipulator, p); }));
        }

        const nxDecimal stepped = rules.Stepped(price, up);
        ASSERT_NO_FATAL_FAILURE(ExpectEach(
            price, stepped, [&](nxDecimal& p) { up ? table.Increment(p) : table.Decrement(p); },
            [&](nxDecimal& p) { up ? cursor.Increment(p) : cursor.Decrement(p); }));
        walking = stepped;
        nxDecimal many = price, before;
        bool isExact = price.IsValid();
        for (int step = 0; step < std::abs(ticks); ++step)
        {
            before = std::exchange(many, rules.Stepped(many, ticks > 0));
            isExact = isExact && rules.IsExactStep(before, many, ticks > 0 ? 1 : -1);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectExact(
            price, many, isExact, [&](nxDecimal& p) { return table.IncrementExact(p, ticks); },
            [&](nxDecimal& p) { return cursor.IncrementExact(p, ticks); }));
        ASSERT_NO_FATAL_FAILURE(ExpectEach(
            price, many, [&](nxDecimal& p) { table.Increment(p, ticks); },
            [&](nxDecimal& p) { cursor.Increment(p, ticks); },
            [&](nxDecimal& p) { table.Increment(std::span(&p, 1), ticks); }));
    }
}
}  // namespace

TEST(nxVariableTickTable, DifferentialOfEveryWayOfAskingOnTheCatalogue)
{
    std::uint64_t seed = nxRandomTest::GetSeed(1);
    const std::vector<std::string> ids = nxVariableTickTableContainer::GetVariableTickTableIDs();
    for (const std::string& id : ids)
    {
        SCOPED_TRACE(id);
        const nxVariableTickTable& table = *nxVariableTickTableContainer::GetVariableTickTable(id);
        ASSERT_NO_FATAL_FAILURE(
            CompareWithTranscription(table, ++seed, nxRandomTest::GetOperations(150'000) / ids.size() + 1));
    }
}

TEST(nxVariableTickTable, DifferentialOfEveryWayOfAskingOnOddTables)
{
    const char* const tables[] = {
        "0.01",
        "1000000000000000000",
        "0.000000000000001",
        "0.0000000000000001 0.0000000000000001; 1",  // finer than the integers take
        "1 0.0000000001; 2 0.3; 7",                  // increments that do not divide the bounds
        "0.5 1; 0.7 2; 0.8 3; 10 4; 5",              // bands narrower than a tick
        "0.001 0.01; 0.5",
        "10.00 0.05; 10.01 0.05; 20.000 0.01; 0.5",  // ticks that fall
        "9007199254740993 1; 2",                     // bounds beyond what a double holds
        "562949953.421311 0.000001; 562949953.421312 1; 2",
        "5 0.01; 900000000000000000 0.5; 9223372036854775806 3; 7",
        "562949953.421310 0.000001; 2",  // the top band begins with the last number that the integers take
        "562949953.421311 0.000001; 2",  // and one after it
        "0.1 0.0000000000000000001; 1",  // a tick that no price of the next band can be put to
        "0.4 1; 0.7 2.00; 5",            // one step leads from any price of a band beyond it, to other places
        "0.1 0.3; 0.4 1.00; 0.5 7; 0.9 4.000; 5",
        "9.985 0.01; 100 0.05; 0.5",  // the next grid begins with a price that only the lower tick allows
        "206216152",                  // with fifteen places more a little beyond a multiple of 2^64
    };
    std::uint64_t seed = nxRandomTest::GetSeed(1) + 1000;
    std::vector<std::string> texts(std::begin(tables), std::end(tables));
    std::mt19937_64 random(seed);
    for (int i = 0; i < 20; ++i)
    {
        const auto number = [&](long long mantissa) { return Text(D(mantissa, static_cast<int>(random() % 5))); };
        std::string& text = texts.emplace_back();
        long long bound = 0;
        for (std::size_t bands = random() % 6; bands != 0; --bands)
            text += Text(D(bound += 1 + static_cast<long long>(random() % 5000), 3)) + ' ' +
                    number(1 + static_cast<long long>(random() % 500)) + "; ";
        text += number(1 + static_cast<long long>(random() % 500));
    }
    for (const int bands : {128, 129})  // the most for which a table keeps all zones, and one more
    {
        std::string& text = texts.emplace_back();
        for (int band = 1; band < bands; ++band)
            text += Text(D(100 * band - 1, 2)) + (band % 2 == 0 ? " 0.01; " : " 0.02; ");
        text += "0.05";
    }
    for (const std::string& bands : texts)
    {
        SCOPED_TRACE(bands);
        const Table table(bands.c_str());
        ASSERT_TRUE(table._CheckConstraints());
        ASSERT_NO_FATAL_FAILURE(
            CompareWithTranscription(table, ++seed, nxRandomTest::GetOperations(150'000) / texts.size() + 1));
    }
}

// Runs of steps look for the ends of a band by halves, which is right as long as this holds, at every scale and size.
TEST(nxVariableTickTable, TheTickOfAStepNeverFallsAsThePriceGrows)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(1));
    const std::size_t tables = nxRandomTest::GetOperations(150'000) / 100 + 1;
    for (std::size_t i = 0; i < tables; ++i)
    {
        // Two bounds of any size and fewer places than the prices, and ticks that grow.
        const int places = static_cast<int>(random() % 19);
        const auto cut = [&](long long mantissa)
        {
            nxDecimal number = D(mantissa, places);
            number.SetDecimalPlaces(static_cast<unsigned char>(random() % static_cast<unsigned>(places + 1)), false);
            return number;
        };
        const auto size = static_cast<int>(1 + random() % 63);
        const nxDecimal lower = cut(static_cast<long long>(random() >> size));
        const nxDecimal upper = cut(static_cast<long long>(random() >> size));
        long long ticks[3] = {static_cast<long long>(1 + random() % 1000)};
        ticks[1] = ticks[0] + static_cast<long long>(random() % 1000);
        ticks[2] = ticks[1] + static_cast<long long>(random() >> (1 + random() % 63)) / 2;
        if (!lower.IsPositive() || !(lower < upper))
            continue;
        Table table;
        table._AddRange(lower, D(ticks[0], places));
        table._AddRange(upper, D(ticks[1], places));
        table._AddTopRange(D(ticks[2], places));
        const auto getStep = [&](long long mantissa, bool up)
        {
            nxDecimal price = D(mantissa, places);
            up ? table.Increment(price) : table.Decrement(price);
            price.SetDecimalPlaces(static_cast<unsigned char>(places), false);
            const std::uint64_t step =
                static_cast<std::uint64_t>(price.GetValue()) - static_cast<std::uint64_t>(mantissa);
            return up ? step : 0 - step;
        };
        for (int pair = 0; pair < 20; ++pair)
        {
            const long long middles[] = {lower.GetIntegerPart(), ticks[2], static_cast<long long>(random() >> size)};
            nxDecimal near[] = {lower, upper, D(middles[random() % 3], places)};
            nxDecimal& middle = near[random() % 3];
            middle.SetDecimalPlaces(static_cast<unsigned char>(places), false);
            const auto reach = static_cast<long long>(1 + random() % 3) * ticks[random() % 2];
            const auto less = std::max<long long>(0, middle.GetValue() - reach - static_cast<long long>(random() % 3));
            const auto more = static_cast<long long>(std::min<std::uint64_t>(
                static_cast<std::uint64_t>(middle.GetValue()) + static_cast<std::uint64_t>(reach), INT64_MAX));
            SCOPED_TRACE(testing::Message() << Text(lower) << ' ' << Text(upper) << ' ' << ticks[0] << ' ' << ticks[1]
                                            << ' ' << ticks[2] << " places " << places << ": " << less << ", " << more);
            for (const bool up : {true, false})
            {
                ASSERT_LE(getStep(less, up), getStep(more, up)) << up;
                ASSERT_EQ(getStep(-more, !up), getStep(more, up)) << "the mirror image";
            }
        }
    }
}

// Runs of steps that leave the integers of a table, or that wrap, end where single steps end, and take no time: two billion
// single steps would take minutes.
TEST(nxVariableTickTable, LongRunsOfStepsAreCutShort)
{
    const std::tuple<const char*, long long, int> rows[] = {
        {"10 0.01; 0.05", 12123456789, 9},        // past 2^49 units after some millions of steps
        {"10 0.01; 0.05", -4503599627370497, 3},  // on either side of 2^49 units
        {"10 0.01; 100 0.05; 5", 0, 0},
        {"10 0.01; 100 0.05; 5.00", -1073740433001, 2},
        {"9 1; 1000000000", 0, 0},
        {"0.000000000000001", -10, 0},                 // where doubles would lose the tick
        {"10 0.01; 0.01", 562949953421312125, 3},      // or a part of it
        {"10 0.01; 1", 4000000000000000000, 0},        // the sum with 0.01 does not fit
        {"10 0.01; 1", -9000000000000000007, 0},       //
        {"10 0.001; 1.0", 210000000000000005, 1},      // also from one place to three
        {"0.00000000000000001", 1234567891, 18},       // as many places as a power of ten has
        {"10 4000000000.00; 1", 20, 0},                // the tick below is larger, and finer
        {"1000000000000 0.0001; 0.05", 3141592, 4},    // bounds beyond the integers
        {"1000000000000 0.0001; 0.05", 314159265, 7},  //
        {"0.00000001", 7777777777777777, 9},
        {"0.00025", 1234567890123456789, 15},  // overflows on the way
        {"0.00000001", 123456789012345678, 18},
        {"0.00000000024593", -18, 20},                // a tick is 2.5e10 units
        {"762127.2 6264011; 34000.0; 7.0", -18, 13},  // overflows every third step, and bands that fall
        {"70015137136.76 0.000000002; 0.000000000001", 6136780000349999988, 9},  // more places above the band
    };
    std::mt19937_64 random(nxRandomTest::GetSeed(1));
    for (const auto& [bands, mantissa, places] : rows)
        for (const bool up : {true, false})
        {
            SCOPED_TRACE(std::string(bands) + " at " + Exact(D(mantissa, places)) + (up ? " up" : " down"));
            const Table table(bands);
            nxTickTableCursor cursor(table);
            const int steps = static_cast<int>(1000 + random() % 2000);
            nxDecimal single = D(mantissa, places), run = single;
            for (int i = 0; i < steps; ++i)
                up ? cursor.Increment(single) : cursor.Decrement(single);
            cursor.Increment(run, up ? steps : -steps);
            EXPECT_EQ(Exact(run), Exact(single)) << steps;

            const int first = static_cast<int>(random() % INT_MAX);
            nxDecimal whole = D(mantissa, places), halves = whole, exact = whole;
            table.Increment(whole, up ? INT_MAX : INT_MIN);
            const bool isExact = table.IncrementExact(exact, up ? first : -first).IsOK() &&
                                 table.IncrementExact(exact, up ? INT_MAX - first : INT_MIN + first).IsOK();
            ExpectExact(halves, whole, isExact,
                        [&](nxDecimal& p) { return cursor.IncrementExact(p, up ? INT_MAX : INT_MIN); });
            table.Increment(halves, up ? first : -first);
            table.Increment(halves, up ? INT_MAX - first : INT_MIN + first);
            EXPECT_EQ(Exact(halves), Exact(whole)) << first;
        }
    // Where the mantissa overflows, it wraps as decimal arithmetic does.
    nxDecimal wrapped = D(INT64_MAX - 5, 0);
    Table("10 0.01; 1").Increment(wrapped, 6);
    EXPECT_EQ(Exact(wrapped), Exact(D(INT64_MIN, 0)));
}

TEST(nxVariableTickTable, ExactFormsRefuseWhatDoesNotFit)
{
    const Table table("9.990 0.010; 0.500");
    const std::tuple<nxDecimal, nxErrorEnum, nxErrorEnum> rows[] = {
        // rounded up, one tick up
        {D("922337203685477580.7"), NX_ERR_VALUE_OUT_OF_RANGE, NX_ERR_VALUE_OUT_OF_RANGE},
        {D("92233720368547758.07"), NX_ERR_VALUE_OUT_OF_RANGE, NX_ERR_VALUE_OUT_OF_RANGE},
        {D("9223372036854775807"), NX_ERR_VALUE_OUT_OF_RANGE, NX_ERR_VALUE_OUT_OF_RANGE},
        {D("99999999999999999"), NX_ERR_VALUE_OUT_OF_RANGE, NX_ERR_VALUE_OUT_OF_RANGE},
        {D("922337203685477.5800"), nxErrorEnum(), NX_ERR_VALUE_OUT_OF_RANGE},
        {D("9223372036854775.000"), nxErrorEnum(), nxErrorEnum()},
        {D(1, 19), NX_ERR_VALUE_OUT_OF_RANGE, NX_ERR_VALUE_OUT_OF_RANGE},
        {D(INT64_MIN, 2), NX_ERR_NO_MATCH, NX_ERR_NO_MATCH},
        {nxDecimal::GetNoChangeDecimal(), NX_ERR_OBJECT_IS_NULL, NX_ERR_OBJECT_IS_NULL},
    };
    for (const auto& [price, rounded, stepped] : rows)
    {
        nxDecimal p = price, q = price;
        EXPECT_EQ(nxPriceManipulator(&table).RoundToValidTickExact(methods[1], p), rounded) << price;
        EXPECT_EQ(nxPriceManipulator(&table).IncrementExact(q), stepped) << price;
    }
}

TEST(nxVariableTickTable, SpansAreTakenAsFarAsTheyReach)
{
    const Table table("10 0.01; 0.05");
    std::vector<nxDecimal> prices = {D("9.996"), nxDecimal::GetNullDecimal(), D("12.33"), D("-12.33")};
    std::vector<nxDecimal> ticks(5, D("7"));
    table.GetTickIncrement(std::span(prices).first(3), ticks);
    table.GetTickIncrement(std::span<const nxDecimal>(), ticks);
    EXPECT_EQ(testing::PrintToString(ticks), "{ 0.01, 0.01, 0.05, 7, 7 }");
    table.GetTickIncrement(prices, std::span(ticks).last(1));
    EXPECT_EQ(testing::PrintToString(ticks), "{ 0.01, 0.01, 0.05, 7, 0.01 }");
    table.RoundToValidTick(methods[1], prices);
    EXPECT_EQ(testing::PrintToString(prices), "{ 10.00, NULL, 12.35, -12.30 }");
    table.Increment(prices, -2);
    EXPECT_EQ(testing::PrintToString(prices), "{ 9.98, NULL, 12.25, -12.40 }");
    table.RoundToValidTick(methods[1], std::span<nxDecimal>());
    table.Increment(std::span<nxDecimal>(), 1);
}

TEST(nxVariableTickTable, StepsOfOneBandByItsIterator)
{
    const Table table("10 0.01; 0.050");
    nxDecimal price = D("9.99");
    table._IncreasePrice(price, table.At(0));
    EXPECT_EQ(Text(price), "10.00");  // the bound itself is still in the band
    table._IncreasePrice(price, table.At(0));
    EXPECT_EQ(Text(price), "10.010");
    price = D("-9.995");
    table._DecreasePrice(price, table.At(0));
    EXPECT_EQ(Text(price), "-10.005");
    table._DecreasePrice(price, table.At(1));
    EXPECT_EQ(Text(price), "-10.055");
    table._DecreasePrice(price, table.At(2));  // no band
    table._IncreasePrice(price, table.At(2));
    EXPECT_EQ(Text(price), "-10.055");
    Table topless;
    topless._AddRange(D("10"), D("0.0100"));
    topless._DecreasePrice(price, topless.At(0));  // below the last band it keeps that one's places
    EXPECT_EQ(Text(price), "-10.0650");
    EXPECT_EQ(Text(table._GetIncrementForPrice(D("10.01"))), "0.050");
}

// Threads share one table. Their prices are far apart, so that each replaces the band that another has remembered. The tables
// are new, so that the threads also make the zones of one kind of prices at once.
TEST(nxVariableTickTable, ThreadsShareATable)
{
    class Unasked final : public nxVariableTickTable
    {
    public:
        explicit Unasked(const char* bands) : nxVariableTickTable(Unwatched()) { _AddRanges(bands); }
    };
    for (int round = 0; round < 10; ++round)
    {
        const char* const bands = "9.99 0.01; 99.95 0.05; 999.75 0.25; 0.50";
        const Table watched(bands);
        const Unasked unasked(bands);
        const nxVariableTickTable& table = round % 2 == 0 ? static_cast<const nxVariableTickTable&>(watched) : unasked;
        std::vector<std::string> ends(4);
        nxInThreads(4,
                    [&](int thread)
                    {
                        nxDecimal shared = D("0.00"), free = shared;
                        nxTickTableCursor cursor(table);
                        const int ticks = thread % 2 == 0 ? 1 : -1;
                        for (int step = 0; step < 3000; ++step)
                        {
                            if (step % 2 == 0)
                                table.Increment(shared, ticks);
                            else
                                ticks > 0 ? table.Increment(shared) : table.Decrement(shared);
                            cursor.Increment(free, ticks);
                            table.RoundToValidTick(methods[0], shared);
                            if (Exact(shared) != Exact(free) ||
                                Exact(table.GetTickIncrement(free)) != Exact(cursor.GetTickIncrement(free)))
                                return;
                        }
                        ends[static_cast<std::size_t>(thread)] = Text(shared);
                    });
        EXPECT_EQ(ends, (std::vector<std::string>{"150.00", "-150.00", "150.00", "-150.00"}));
    }
}

// There are more tables than a thread remembers, and each is made where another one was.
TEST(nxVariableTickTable, WhatAThreadRemembersEndsWithTheTable)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(1));
    std::array<std::optional<Table>, 40> tables;
    std::array<long long, std::size(tables)> ticks{};
    for (int question = 0; question < 5000; ++question)
    {
        const std::size_t i = random() % tables.size();
        if (!tables[i] || random() % 8 == 0)
        {
            ticks[i] = 1 + static_cast<long long>(random() % 100);
            tables[i].emplace(("5 " + Text(D(ticks[i], 2)) + "; " + Text(D(ticks[i] + 100, 2))).c_str());
        }
        const bool isTop = random() % 2 == 0;
        ASSERT_EQ(Exact(tables[i]->GetTickIncrement(D(isTop ? "123.45" : "4.56"))),
                  Exact(D(ticks[i] + 100 * isTop, 2)));
    }
}
