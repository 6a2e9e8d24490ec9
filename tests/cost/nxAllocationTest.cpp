// SPDX-License-Identifier: Apache-2.0
// Runs every operation of a trading thread's steady state and counts allocations: there must be none.

#include <functional>

#include "core/nxCore.h"
#include "tests/support/nxAllocations.inc"
#include "tests/support/nxTest.h"

TEST(nxAllocation, TheSteadyStateAllocatesNothing)
{
    if (!nxAllocations::areCounted)
        GTEST_SKIP() << "this sanitizer's operators new are in the way";
    const std::string decimalText = "12345.67890", integerText = "123456789", name = "NX_ERR_INSUFFICIENT_MEMORY";
    const nxVariableTickTable& table = *nxVariableTickTableContainer::GetVariableTickTable("VTT_CHIX_FESE1");
    const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
    const nxDecimal cent = nxDecimal::ConstructFromValueAndDecimalPlaces(1, 2);
    nxTickTableCursor cursor(table);
    nxDecimal price(decimalText, '.'), other(7, 1);
    nxErrorEnum error;
    nxMutex mutex;
    int integer = 0;
    double number = 0;
    bool kept = true;
    nxFunctorQueue queue(4);
    const std::shared_ptr<int> shared = std::make_shared<int>();
    char buffer[nxDecimal::MaxTextSize];
    std::string text;
    text.reserve(4096);

    const struct
    {
        const char* name;
        std::function<void()> run;
    } operations[] = {
        {"decimal from text", [&] { kept = price.SetFromString(decimalText, '.').IsOK(); }},
        {"decimal arithmetic", [&] { other = (price + other) * other / price - cent; }},
        {"decimal rounded", [&] { other.Round(cent, nearest); }},
        {"decimal to a buffer", [&] { price.GetAsString(buffer, '.'); }},
        {"decimal appended", [&] { price.AppendAsString(text, '.'); }},
        {"integer from text", [&] { kept = nxStringHelper::SetFromString(integerText, integer).IsOK(); }},
        {"double from text", [&] { kept = nxStringHelper::SetFromString(decimalText, number, '.').IsOK(); }},
        {"integer appended", [&] { nxStringHelper::AppendAsString(text, integer); }},
        {"double appended", [&] { nxStringHelper::AppendAsString(text, number); }},
        {"error from its name", [&] { kept = error.SetFromString(name); }},
        {"error's name", [&] { kept = !error.GetShortDescription().empty(); }},
        {"tick at a price", [&] { other = table.GetTickIncrement(price); }},
        {"tick by cursor", [&] { other = cursor.GetTickIncrement(price); }},
        {"rounded to a tick", [&] { table.RoundToValidTick(nearest, price); }},
        {"rounded by cursor", [&] { cursor.RoundToValidTick(nearest, price); }},
        {"stepped", [&] { table.Increment(price, 3); }},
        {"time stamp taken and printed", [&] { nxTimeStamp().GetAsStringFast(buffer, sizeof buffer); }},
        {"mutex", [&] { const nxMutexGuard guard(mutex); }},
        {"functor posted and run",
         [&] { kept = queue.Post([&kept] { kept = false; }).IsOK() && queue.RunOne(0).IsOK(); }},
        {"functor with an owner", [&] { kept = queue.Post([shared] {}).IsOK() && queue.RunOne(0).IsOK(); }},
    };
    ASSERT_GT(nxAllocations::count.load(), 0u);
    for (const auto& operation : operations)
    {
        for (int i = 0; i < 2; ++i)
            operation.run();  // may allocate what is kept; rounding gives the next run other places
        text.clear();
        const std::size_t before = nxAllocations::count.load();
        for (int i = 0; i < 100; ++i)
            operation.run();
        EXPECT_EQ(nxAllocations::count.load() - before, 0u) << operation.name;
        EXPECT_TRUE(kept) << operation.name;
    }
}
