// SPDX-License-Identifier: Apache-2.0
// Memory that runs out at the first, the second, ... every allocation of an operation: nothing crashes, nothing but
// std::bad_alloc comes out, and afterwards everything works as before.

#include "core/nxCore.h"
#include "tests/support/nxAllocations.inc"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
class ManyEnum final : public nxTypedEnum<ManyEnum, 5000000, 5009999>
{
public:
    using nxTypedEnum::nxTypedEnum;
    static bool Register(unsigned value, const std::string& text)
    {
        return _Register(value, text, "described as " + text);
    }
    std::string GetClassName() const override { return "ManyEnum"; }
};

class ManyMask final : public nxTypedBitMask<ManyMask, nxBitMask>
{
public:
    explicit ManyMask(const std::string& className) : nxTypedBitMask(1), _className(className) {}
    bool Register(const std::string& text) { return _Register(1, text, "described as " + text); }
    std::string GetClassName() const override { return _className; }

private:
    std::string _className;
};

// Allocations can be made to fail where the program's own operators new are in use.
class nxAllocationFault : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!nxAllocations::areCounted)
            GTEST_SKIP() << "this sanitizer's operators new are in the way";
    }
};

// Executes `attempt` with the first, the second, ... allocation failing until none does, and `check` after each time.
// @return how many allocations failed.
template <class Attempt, class Check>
long FailEveryAllocation(const Attempt& attempt, const Check& check)
{
    for (long allocation = 0;; ++allocation)
    {
        nxAllocations::hasFailed = false;
        nxAllocations::remaining = allocation;
        try
        {
            attempt();
        }
        catch (const std::bad_alloc&)
        {
        }
        nxAllocations::remaining = -1;
        check();
        if (!nxAllocations::hasFailed)
            return allocation;
    }
}

// @return what the last attempt returned.
template <class Attempt>
bool RegisterAtLast(const Attempt& attempt)
{
    bool isNew = false;
    FailEveryAllocation([&] { isNew = attempt(); }, [] {});
    return isNew;
}
}  // namespace

// Enough values for every table to grow.
TEST_F(nxAllocationFault, WhatCouldNotBeRegisteredCanBeRegisteredAgain)
{
    for (unsigned value = 5000001; value < 5003000; ++value)
    {
        const std::string text = "A_NAME_TOO_LONG_FOR_A_SMALL_BUFFER_" + std::to_string(value);
        ASSERT_TRUE(RegisterAtLast([&] { return ManyEnum::Register(value, text); })) << value;
        ManyEnum read;
        ASSERT_TRUE(read.SetFromString(text)) << value;
        ASSERT_EQ(read, value);
        ASSERT_EQ(read.GetShortDescription(), text);

        ManyMask mask(text);
        if (value % 100 == 0)
        {
            ASSERT_TRUE(RegisterAtLast([&] { return mask.Register(text); })) << value;
            ASSERT_EQ(mask.GetShortDescription(" "), text);
        }
    }
}

TEST_F(nxAllocationFault, ATickTableThatCouldNotBeRegisteredCanBeRegisteredAgain)
{
    std::unique_ptr<nxCustomVariableTickTable> table;
    std::string reason;
    ASSERT_TRUE(nxCustomVariableTickTable::Create("A_NAME_TOO_LONG_FOR_A_SMALL_BUFFER",
                                                  {{nxDecimal::GetMaximumDecimal(), nxDecimal(1, 2)}}, table, reason)
                    .IsOK());
    using Container = nxVariableTickTableContainer;
    ASSERT_FALSE(Container::GetVariableTickTableIDs().empty());  // makes the catalogue, with memory of its own
    EXPECT_TRUE(RegisterAtLast([&] { return Container::RegisterVariableTickTable(table).IsOK(); }));
    EXPECT_NE(Container::GetVariableTickTable("VTT_A_NAME_TOO_LONG_FOR_A_SMALL_BUFFER"), nullptr);
}

TEST_F(nxAllocationFault, APostWithoutMemoryIsRefused)
{
    nxFunctorQueue queue(1);
    nxFunctorThreadPool pool;
    int calls = 0;
    nxErrorEnum posted, started;
    const auto large = [&calls, text = std::string(200, 'x'), rest = std::array<char, 100>()] { calls += rest[0] + 1; };
    const long failures = FailEveryAllocation([&] { posted = queue.TimedPost(large, 0); },
                                              [&]
                                              {
                                                  EXPECT_EQ(posted.IsOK(), !nxAllocations::hasFailed);
                                                  EXPECT_EQ(queue.GetCounts().queued, posted.IsOK() ? 1U : 0U);
                                              });
    EXPECT_EQ(queue.GetCounts().refused, static_cast<unsigned long long>(failures));
    EXPECT_TRUE(queue.RunOne(0).IsOK() && calls == 1);
    EXPECT_GT(FailEveryAllocation([&] { started = pool.Start(2); },
                                  [&] { EXPECT_TRUE(started.IsOK() || started == NX_ERR_INSUFFICIENT_MEMORY); }),
              0);
    EXPECT_TRUE(pool.Post([] {}).IsOK());
}

TEST_F(nxAllocationFault, EveryOperationSurvivesEveryAllocationThatFails)
{
    const std::string longText(200, '7'), camel = "aLongNameInCamelCaseThatNeedsMoreThanASmallBuffer";
    std::string csv = "name,band,upper_bound,increment\n";
    for (int i = 1; i <= 8; ++i)
        csv += "A_TABLE_WITH_A_LONG_NAME," + std::to_string(i) + "," + (i == 8 ? "" : std::to_string(i)) + ",0.01\n";
    static char program[] = "program", option[] = "-option", value[] = "value";
    static char* arguments[] = {program, option, value, nullptr};

    const auto valuesAndTexts = [&]
    {
        std::string text = nxDecimal(longText, '.').GetAsString('.') + nxDecimal(5, 200).GetAsLogString('.');
        text += nxStringHelper::GetUppercaseAndUnderscoreFormatted(camel);
        nxStringHelper::Replace(text, "_", "______");
        nxStringHelper::PadLeft(text, 1'000, ' ');
        text += nxStringHelper::GetAsString(1e300) + nxStringHelper::GetAsString(2.5);
        std::deque<std::string> fields;
        nxStringParser::ExtractAllSubstrings(camel + "," + longText + "," + camel, fields, true, ',');
        nxErrorEnum error;
        const bool isKnown = error.SetFromString("NX_ERR_SECURITY_GIVE_NOTICE_USER_NODE_ACTIVE_CHILDREN");
        text += fields.back() + (isKnown ? error.GetLongDescription() + error.GetClassName() : "");
        std::string hex;
        nxAlgorithm::GetAsHex(std::vector<unsigned char>(100, 0xAB), hex);
        return text + hex + nxProductStateBitMask(0x3FFFFFFFu).GetLongDescription("; ") +
               nxVersionNumber::GetInstance().GetVersionNumber() +
               nxVariableTickTableContainer::GetVariableTickTableID("TAIFEX_EQUITY_OPTIONS") +
               nxDateTime(nxDate(2024, 3, 5), nxTime(9, 7, 3)).GetAsString() + nxTimeStamp(0, 0).GetAsString();
    };
    // Each gives a text that tells whether it did its work.
    const struct
    {
        const char* name;
        std::function<std::string()> run;
    } scenarios[] = {
        {"values and texts", valuesAndTexts},
        {"custom tick table",
         [&]
         {
             nxCustomVariableTickTable::Tables tables;
             std::string reason;
             return nxCustomVariableTickTable::ReadText(csv, tables, reason).IsOK() ? std::to_string(tables.size())
                                                                                    : reason;
         }},
        {"command line",
         [&]
         {
             nxCmdLineArgs& options = nxCmdLineArgs::GetInstance();
             options.Initialise(arguments, nullptr);
             std::map<std::string, std::string> all;
             options.GetArgs(all);
             return options.GetArgValue("option") + std::to_string(all.size()) + options.GetEnvValue("NOT_SET");
         }},
        {"named object",
         [&]
         {
             static int made = 0;
             const std::string name = "allocation/" + std::to_string(getpid()) + '/' + std::to_string(++made);
             return std::string(nxWindowsMutex(name).IsNull() ? "null" : "made");
         }},
        {"log record",
         [&]
         {
             NX_LOG(NX_LOG_LEVEL_INFO) << "a record that is longer than a small buffer " << longText << 7
                                       << nxDecimal(1, 2);
             return std::string("logged");
         }},
        {"log record of one's own",
         [&]
         {
             nxLog record(NX_LOG_LEVEL_INFO, "application/file", 1, nxTimeStamp());
             record << longText << longText << NX_ERR_NOT_FOUND;
             Manager().Write(record);
             return std::string("logged");
         }},
    };
    long faults = 0;
    for (const auto& scenario : scenarios)
    {
        SCOPED_TRACE(scenario.name);
        const std::string whole = scenario.run();
        EXPECT_FALSE(whole.empty());
        faults += FailEveryAllocation(scenario.run, [&] { ASSERT_EQ(scenario.run(), whole); });
    }
    EXPECT_GT(faults, 40) << "allocations of the library do not come here";
}

// The device stays in the list, marked, as long as there is no memory for a list without it.
TEST_F(nxAllocationFault, ADeviceThatWasUnregisteredWithoutMemoryCanBeRegisteredAgain)
{
    nxLogManager& manager = nxLogManager::GetInstance();
    nxFunctionLogDevice device;
    WaitUntilWritten();
    const int writes = device.writes;
    const nxLogStatistics before = manager.GetStatistics();
    nxAllocations::remaining = 0;
    manager.UnregisterLogDevice(&device);
    nxAllocations::remaining = -1;
    NX_LOG(NX_LOG_LEVEL_INFO) << "unheard";
    WaitUntilWritten();
    EXPECT_EQ(manager.GetStatistics().written, before.written);
    EXPECT_EQ(manager.GetStatistics().unheard, before.unheard + 1);
    manager.RegisterLogDevice(&device);
    NX_LOG(NX_LOG_LEVEL_INFO) << "to the device";
    WaitUntilWritten();
    EXPECT_EQ(device.writes, writes + 1);
}

// No thread can be started: one that waits has to write by itself and has no memory for it, until another one has some.
TEST_F(nxAllocationFault, AWaitIsOverOnlyWhenTheRecordsAreWritten)
{
    if (!nxInNewProcess())
        return;
    std::atomic<bool> waits{false};
    nxJoinedThread other(
        [&waits]
        {
            waits.wait(false);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));  // so that the other one does wait
            NX_LOG(NX_LOG_LEVEL_WARNING) << "writes both";
        });
    const nxSystemCallFault fault("pthread_create", EAGAIN, {.times = 100'000, .anyThread = true});
    nxFunctionLogDevice device;
    NX_LOG(NX_LOG_LEVEL_INFO) << "to be written";
    nxAllocations::remaining = 0;
    waits = true;
    waits.notify_all();
    WaitUntilWritten();
    nxAllocations::remaining = -1;
    EXPECT_GE(device.writes, 1);
}
