// SPDX-License-Identifier: Apache-2.0
// Tick tables: the tick at a price, rounding to it, one step, whether a price is valid and the next valid one, for tables of 1,
// 10 and 20 bands. One thread, and four threads on one table; one to eight threads on a table of 10 bands, in one of them; and one
// to four threads on such a table, each in a band of its own.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableCursor.h"

namespace
{
constexpr std::size_t ringSize = 1024;
constexpr unsigned char places = 4;  // of all prices

// What one row measures: a table in every form that the columns need, and prices.
struct Market
{
    std::shared_ptr<const nxCustomVariableTickTable> table;
    std::vector<std::int64_t> bounds, ticks;  // in units of 10^-4
    std::array<nxDecimal, ringSize> prices;
    std::array<std::int64_t, ringSize> integers;
    std::array<double, ringSize> doubles;
};

// Bands whose ticks grow by 1, 2, 5, 10; each bound is one tick below the next band, as exchanges write it.
void AddBands(Market& market, std::size_t count)
{
    constexpr std::int64_t pattern[] = {1, 2, 5};
    nxCustomVariableTickTable::Bands bands;
    std::int64_t power = 1;
    for (std::size_t band = 0; band < count; ++band)
    {
        const std::int64_t tick = 10 * pattern[band % 3] * power;
        power *= band % 3 == 2 ? 10 : 1;
        const std::int64_t next = 10 * pattern[(band + 1) % 3] * power;
        const bool isTop = band + 1 == count;
        market.ticks.push_back(tick);
        market.bounds.push_back(isTop ? INT64_MAX : 1000 * next - tick);
        bands.emplace_back(isTop ? nxDecimal::GetNullDecimal()
                                 : nxDecimal::ConstructFromValueAndDecimalPlaces(market.bounds.back(), places),
                           nxDecimal::ConstructFromValueAndDecimalPlaces(tick, places));
    }
    std::string reason;
    std::unique_ptr<nxCustomVariableTickTable> table;
    if (!nxCustomVariableTickTable::Create("BENCHMARK", bands, table, reason).IsOK())
        std::abort();
    market.table = std::move(table);
}

// Neighbouring prices walk some ticks up and down in one band; scattered ones lie in any band.
Market Make(std::size_t bands, std::size_t band, bool scattered, bool onGrid)
{
    Market market;
    AddBands(market, bands);
    std::mt19937_64 random(bands);
    const std::int64_t tick = market.ticks[band];
    std::int64_t walk = 1500 * tick;
    for (std::size_t i = 0; i < ringSize; ++i)
    {
        walk = std::clamp(walk + (static_cast<std::int64_t>(random() % 7) - 3) * tick, 1300 * tick, 1700 * tick);
        const std::int64_t any = market.ticks[random() % bands];
        std::int64_t price = scattered ? 1000 * any + static_cast<std::int64_t>(random() % 500) * any : walk;
        if (!onGrid)
            price += static_cast<std::int64_t>(random() % 9) - 4;
        market.integers[i] = price;
        market.doubles[i] = static_cast<double>(price) / 10000;
        market.prices[i] = nxDecimal::ConstructFromValueAndDecimalPlaces(price, places);
    }
    return market;
}

const nxRoundingMethodEnum roundingMethod(NX_ROUNDING_METHOD_DOWN);

// Both words of the result, in registers, as a caller goes on with it.
void Consume(const nxDecimal& result)
{
    benchmark::DoNotOptimize(result.GetValue());
    benchmark::DoNotOptimize(result.GetScale());
}

// The three jobs in our three manners, and in those of others.
struct TickAtPrice
{
    static constexpr bool onGrid = true;
    template <class Table>
    static void Do(Table& table, const nxDecimal& price)
    {
        benchmark::DoNotOptimize(&table.GetTickIncrement(price));
    }
    static void DoAll(const nxVariableTickTable& table, std::span<nxDecimal> prices)
    {
        std::array<nxDecimal, ringSize> ticks;
        table.GetTickIncrement(prices, ticks);
        benchmark::DoNotOptimize(ticks.data());
    }
    static void ByBand(const nxDecimal&, const nxDecimal& tick) { benchmark::DoNotOptimize(&tick); }
    static std::int64_t ByInteger(std::int64_t, std::int64_t tick) { return tick; }
    static double ByDouble(double, double tick) { return tick; }
};

struct Round
{
    static constexpr bool onGrid = false;
    template <class Table>
    static void Do(Table& table, nxDecimal price)
    {
        table.RoundToValidTick(roundingMethod, price);
        Consume(price);
    }
    static void DoAll(const nxVariableTickTable& table, std::span<nxDecimal> prices)
    {
        table.RoundToValidTick(roundingMethod, prices);
    }
    static void ByBand(const nxDecimal& price, const nxDecimal& tick)
    {
        const std::int64_t value = price.GetValue();
        const nxDecimal rounded =
            nxDecimal::ConstructFromValueAndDecimalPlaces(value - value % tick.GetValue(), places);
        Consume(rounded);
    }
    static std::int64_t ByInteger(std::int64_t price, std::int64_t tick) { return price - price % tick; }
    static double ByDouble(double price, double tick) { return std::floor(price / tick) * tick; }
};

struct Step
{
    static constexpr bool onGrid = true;
    template <class Table>
    static void Do(Table& table, nxDecimal price)
    {
        table.Increment(price);
        Consume(price);
    }
    static void DoAll(const nxVariableTickTable& table, std::span<nxDecimal> prices) { table.Increment(prices, 1); }
    static void ByBand(const nxDecimal& price, const nxDecimal& tick)
    {
        const nxDecimal stepped =
            nxDecimal::ConstructFromValueAndDecimalPlaces(price.GetValue() + tick.GetValue(), places);
        Consume(stepped);
    }
    static std::int64_t ByInteger(std::int64_t price, std::int64_t tick) { return price + tick; }
    static double ByDouble(double price, double tick) { return price + tick; }
};

// Whether a price may be sent: the remainder by its tick is 0.
struct IsValid
{
    static constexpr bool onGrid = false;
    template <class Table>
    static void Do(Table& table, const nxDecimal& price)
    {
        benchmark::DoNotOptimize(table.IsValidTick(price));
    }
    static void ByBand(const nxDecimal& price, const nxDecimal& tick)
    {
        benchmark::DoNotOptimize(price.GetValue() % tick.GetValue() == 0);
    }
    static bool ByInteger(std::int64_t price, std::int64_t tick) { return price % tick == 0; }
    static bool ByDouble(double price, double tick)
    {
        const double ticks = price / tick;
        return std::fabs(ticks - std::nearbyint(ticks)) < 1e-6;
    }
};

// The next valid price above, where it lies in the same band.
struct NextAbove
{
    static constexpr bool onGrid = false;
    template <class Table>
    static void Do(Table& table, const nxDecimal& price)
    {
        nxDecimal next;
        if (table.GetNextAbove(price, next).IsOK())
            Consume(next);
    }
    static void ByBand(const nxDecimal& price, const nxDecimal& tick)
    {
        const std::int64_t value = price.GetValue();
        Consume(
            nxDecimal::ConstructFromValueAndDecimalPlaces(value - value % tick.GetValue() + tick.GetValue(), places));
    }
    static std::int64_t ByInteger(std::int64_t price, std::int64_t tick) { return price - price % tick + tick; }
    static double ByDouble(double price, double tick) { return (std::floor(price / tick) + 1) * tick; }
};

template <class Job>
void Table(benchmark::State& state, const Market* market)
{
    const nxVariableTickTable& table = *market->table;
    std::size_t i = 0;
    for (auto _ : state)
        Job::Do(table, market->prices[i++ % ringSize]);
}

template <class Job>
void Cursor(benchmark::State& state, const Market* market)
{
    nxTickTableCursor cursor(*market->table);
    std::size_t i = 0;
    for (auto _ : state)
        Job::Do(cursor, market->prices[i++ % ringSize]);
}

template <class Job>
void Batched(benchmark::State& state, const Market* market)
{
    std::array<nxDecimal, ringSize> prices;
    while (state.KeepRunningBatch(ringSize))
    {
        prices = market->prices;
        Job::DoAll(*market->table, prices);
        benchmark::DoNotOptimize(prices.data());
        benchmark::ClobberMemory();
    }
}

// One band, remembered for prices of one scale: the least that a search can do.
struct RememberedBand
{
    std::int64_t above = 0, bound = 0;
    nxDecimal tick;

    bool Contains(const nxDecimal& price) const
    {
        return price.GetDecimalPlaces() == places &&
               static_cast<std::uint64_t>(price.GetValue() - above - 1) < static_cast<std::uint64_t>(bound - above);
    }

    void Find(const Market& market, const nxDecimal& price)
    {
        const auto found = std::lower_bound(market.bounds.begin(), market.bounds.end(), price.GetValue());
        const auto band = static_cast<std::size_t>(found - market.bounds.begin());
        above = band == 0 ? -1 : market.bounds[band - 1];
        bound = *found;
        tick = nxDecimal::ConstructFromValueAndDecimalPlaces(market.ticks[band], places);
    }
};

// Does the job with the tick of each price.
template <class DoJob>
void WithTicks(benchmark::State& state, const Market& market, DoJob doJob)
{
    RememberedBand band;
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxDecimal& price = market.prices[i++ % ringSize];
        if (!band.Contains(price))
            band.Find(market, price);
        doJob(price, band.tick);
    }
}

template <class Job>
void RememberedBandAlone(benchmark::State& state, const Market* market)
{
    WithTicks(state, *market, [](const nxDecimal& price, const nxDecimal& tick) { Job::ByBand(price, tick); });
}

// The mutex is of the type that nxMutex wraps.
pthread_mutex_t sharedMutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
RememberedBand sharedBand;

void MutexAlone(benchmark::State& state, const Market*)
{
    for (auto _ : state)
    {
        pthread_mutex_lock(&sharedMutex);
        benchmark::ClobberMemory();
        pthread_mutex_unlock(&sharedMutex);
    }
}

template <class Job>
void MutexAndRememberedBand(benchmark::State& state, const Market* market)
{
    pthread_mutex_lock(&sharedMutex);
    sharedBand = RememberedBand();
    pthread_mutex_unlock(&sharedMutex);
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxDecimal& price = market->prices[i++ % ringSize];
        pthread_mutex_lock(&sharedMutex);
        if (!sharedBand.Contains(price))
            sharedBand.Find(*market, price);
        Job::ByBand(price, sharedBand.tick);
        pthread_mutex_unlock(&sharedMutex);
    }
}

template <class Job>
void BinarySearchInt(benchmark::State& state, const Market* market)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        const std::int64_t price = market->integers[i++ % ringSize];
        const auto found = std::lower_bound(market->bounds.begin(), market->bounds.end(), price);
        const std::int64_t tick = market->ticks[static_cast<std::size_t>(found - market->bounds.begin())];
        benchmark::DoNotOptimize(Job::ByInteger(price, tick));
    }
}

// Doubles with a remembered band: 0.05 is not 0.05, and some prices come out a tick low.
template <class Job>
void DoubleFloor(benchmark::State& state, const Market* market)
{
    double above = 0, bound = 0, tick = 0;
    std::size_t i = 0;
    for (auto _ : state)
    {
        const double price = market->doubles[i++ % ringSize];
        if (price <= above || price > bound)
        {
            RememberedBand band;
            band.Find(*market, nxDecimal(price, places));
            above = static_cast<double>(band.above) / 10000;
            bound = static_cast<double>(band.bound) / 10000;
            tick = band.tick.GetAsDouble();
        }
        benchmark::DoNotOptimize(Job::ByDouble(price, tick));
    }
}

// The same as DoubleFloor for a caller whose prices are decimals, there and back.
void DoubleFloorOfDecimal(benchmark::State& state, const Market* market)
{
    WithTicks(state, *market,
              [](const nxDecimal& price, const nxDecimal& tick)
              { Consume(nxDecimal(Round::ByDouble(price.GetAsDouble(), tick.GetAsDouble()), places)); });
}

template <class Job>
void Register(const std::string& name, std::size_t bands, bool scattered)
{
    // Shared by the columns, for the life of the program.
    const Market* market = new Market(Make(bands, bands / 2, scattered, Job::onGrid));
    const std::string row = name + (scattered ? "_scattered_" : "_") + std::to_string(bands) + "/";
    const auto add = [&](const char* column, void (*function)(benchmark::State&, const Market*))
    {
        for (const int threads : {1, 4})
        {
            auto* registered = benchmark::RegisterBenchmark((row + column).c_str(), function, market);
            if (threads != 1)
                registered->Threads(threads)->UseRealTime();
        }
    };
    add("ours_table", Table<Job>);
    if constexpr (requires(std::span<nxDecimal> prices) { Job::DoAll(*market->table, prices); })
        add("ours_batched", Batched<Job>);
    add("ours_cursor", Cursor<Job>);
    add("limit_mutex_alone", MutexAlone);
    add("limit_mutex_and_remembered_band", MutexAndRememberedBand<Job>);
    add("limit_remembered_band", RememberedBandAlone<Job>);
    add("peer_double_floor", DoubleFloor<Job>);
    if (std::is_same_v<Job, Round>)
        add("peer_double_floor_of_decimal", DoubleFloorOfDecimal);
    add("peer_binary_search_int", BinarySearchInt<Job>);
}

// How a table that all threads share bears more of them.
void RegisterScaling()
{
    const Market* market = new Market(Make(10, 5, false, Round::onGrid));
    const auto add = [market](const char* column, void (*function)(benchmark::State&, const Market*))
    {
        benchmark::RegisterBenchmark((std::string("tick_round_scaling/") + column).c_str(), function, market)
            ->ThreadRange(1, 8)
            ->UseRealTime();
    };
    add("ours_table", Table<Round>);
    add("ours_batched", Batched<Round>);
    add("ours_cursor", Cursor<Round>);
    add("limit_mutex_and_remembered_band", MutexAndRememberedBand<Round>);
    add("peer_double_floor", DoubleFloor<Round>);
}

// The same where the threads' prices lie in different bands.
void RegisterOwnBands()
{
    constexpr std::size_t threads = 4;
    auto& markets = *new std::array<Market, threads>;
    for (std::size_t i = 0; i < threads; ++i)
    {
        markets[i] = Make(10, 2 * i + 1, false, Round::onGrid);
        markets[i].table = markets[0].table;
    }
    const auto add = [&markets](const char* column, void (*function)(benchmark::State&, const Market*))
    {
        benchmark::RegisterBenchmark((std::string("tick_round_own_bands/") + column).c_str(),
                                     [&markets, function](benchmark::State& state)
                                     { function(state, &markets[static_cast<std::size_t>(state.thread_index())]); })
            ->ThreadRange(1, threads)
            ->UseRealTime();
    };
    add("ours_table", Table<Round>);
    add("ours_cursor", Cursor<Round>);
    add("limit_mutex_and_remembered_band", MutexAndRememberedBand<Round>);
    add("peer_double_floor", DoubleFloor<Round>);
}

const bool isRegistered = []
{
    for (const unsigned bands : {1U, 10U, 20U})
    {
        Register<TickAtPrice>("tick_at_price", bands, false);
        Register<Round>("tick_round", bands, false);
        Register<Step>("tick_step", bands, false);
        Register<IsValid>("tick_is_valid", bands, false);
        Register<NextAbove>("tick_next_above", bands, false);
    }
    Register<TickAtPrice>("tick_at_price", 20, true);
    Register<Round>("tick_round", 20, true);
    Register<IsValid>("tick_is_valid", 20, true);
    Register<NextAbove>("tick_next_above", 20, true);
    RegisterScaling();
    RegisterOwnBands();
    return true;
}();
}  // namespace
