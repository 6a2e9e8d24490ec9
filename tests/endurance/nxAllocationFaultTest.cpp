// Memory that runs out at the first, the second, ... every allocation of an operation: nothing crashes, nothing but
// std::bad_alloc comes out, and afterwards everything works as before.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "core/nxCore.h"

namespace
{
// Allocations of this thread that still succeed; negative while none is to fail.
thread_local long remaining = -1;
thread_local bool failed = false;

void* Allocate(std::size_t size)
{
    if (remaining >= 0 && remaining-- == 0)
    {
        failed = true;
        remaining = 0;  // memory does not come back by itself
        throw std::bad_alloc();
    }
    if (void* const block = std::malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}

// Not inline: the compiler would take the pair of new and free for a mistake.
[[gnu::noinline]] void Free(void* block) { std::free(block); }
}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try
    {
        return Allocate(size);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Free(block); }

TEST(nxAllocationFault, EveryOperationSurvivesEveryAllocationThatFails)
{
    const std::string longText(200, '7'), camel = "aLongNameInCamelCaseThatNeedsMoreThanASmallBuffer";
    std::string csv = "name,band,upper_bound,increment\n";
    for (int i = 1; i <= 8; ++i)
        csv += "A_TABLE_WITH_A_LONG_NAME," + std::to_string(i) + "," + (i == 8 ? "" : std::to_string(i)) + ",0.01\n";
    static char program[] = "program", option[] = "-option", value[] = "value";
    static char* arguments[] = {program, option, value, nullptr};

    // Each gives a text that tells whether it did its work.
    const struct
    {
        const char* name;
        std::function<std::string()> run;
    } scenarios[] = {
        {"decimal",
         [&]
         {
             nxDecimal price;
             static_cast<void>(price.SetFromString(longText, '.'));
             return price.GetAsString('.') + nxDecimal(5, 200).GetAsLogString('.');
         }},
        {"string helper",
         [&]
         {
             std::string text = nxStringHelper::GetUppercaseAndUnderscoreFormatted(camel);
             nxStringHelper::Replace(text, "_", "______");
             nxStringHelper::PadLeft(text, 300, ' ');
             return text + nxStringHelper::GetAsString(1e300) + nxStringHelper::GetAsString(2.5);
         }},
        {"string parser",
         [&]
         {
             std::deque<std::string> fields;
             nxStringParser::ExtractAllSubstrings(camel + "," + longText + "," + camel, fields, true, ',');
             return fields.back();
         }},
        {"enumeration",
         [&]
         {
             nxErrorEnum error;
             const std::string identifier = "NX_ERR_SECURITY_GIVE_NOTICE_USER_NODE_ACTIVE_CHILDREN";
             return error.SetFromString(identifier) ? error.GetLongDescription() + error.GetClassName() : "";
         }},
        {"mask",
         [&]
         {
             nxProductStateBitMask mask(0x3FFFFFFFu);
             return mask.GetShortDescription(", ") + mask.GetLongDescription("; ");
         }},
        {"hex and version",
         [&]
         {
             std::string text;
             nxAlgorithm::GetAsHex(std::vector<unsigned char>(100, 0xAB), text);
             return text + nxVersionNumber::GetInstance().GetVersionNumber();
         }},
        {"custom tick table",
         [&]
         {
             nxCustomVariableTickTable::Tables tables;
             std::string reason;
             return nxCustomVariableTickTable::ReadText(csv, tables, reason).IsOK() ? std::to_string(tables.size())
                                                                                    : reason;
         }},
        {"catalogue", [&] { return nxVariableTickTableContainer::GetVariableTickTableID("TAIFEX_EQUITY_OPTIONS"); }},
        {"command line",
         [&]
         {
             nxCmdLineArgs& options = nxCmdLineArgs::GetInstance();
             options.Initialise(arguments, nullptr);
             std::map<std::string, std::string> all;
             options.GetArgs(all);
             return options.GetArgValue("option") + std::to_string(all.size()) + options.GetEnvValue("NOT_SET");
         }},
        {"dates",
         [&]
         {
             nxDateTime when(nxDate(2024, 3, 5), nxTime(9, 7, 3));
             return when.GetAsString() + nxTimeStamp(0, 0).GetAsString();
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
             nxLogManager::GetInstance().Write(record);
             return std::string("logged");
         }},
    };
    long faults = 0;
    for (const auto& scenario : scenarios)
    {
        SCOPED_TRACE(scenario.name);
        const std::string whole = scenario.run();
        EXPECT_FALSE(whole.empty());
        long allocation = 0;
        do
        {
            failed = false;
            remaining = allocation++;
            try
            {
                scenario.run();
            }
            catch (const std::bad_alloc&)
            {
            }
            remaining = -1;
            ASSERT_EQ(scenario.run(), whole) << "after allocation " << allocation << " failed";
            faults += failed;
        } while (failed && allocation < 10'000);
        EXPECT_FALSE(failed);
    }
    EXPECT_GT(faults, 50) << "allocations of the library do not come here";
}
