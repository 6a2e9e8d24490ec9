// SPDX-License-Identifier: Apache-2.0
// Built from the sources of the library, so that the object below is initialised before their objects and destroyed after
// them. It must find every text in both places, whatever is asked for first: orderTest NX_TEST_FIRST=STEP.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <thread>

#include "core/enum/nxBoolEnum.h"
#include "core/enum/nxErrorEnum.h"
#include "tests/support/nxAllocations.inc"

// A child that is forked after a thread has ended, but not yet been joined, would count as one that leaks it.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options()
{
    return "report_thread_leaks=0";
}

namespace
{
class OwnEnum final : public nxTypedEnum<OwnEnum, 3000000, 3100000>
{
public:
    using nxTypedEnum::nxTypedEnum;
    std::string GetClassName() const override { return "OwnEnum"; }

    static bool Register()
    {
        const unsigned value = ++_last;
        return !_Register(value, "NX_ERR_NOT_FOUND", "") && _Register(value, "OWN_" + std::to_string(value), "");
    }
    static bool IsRegistered()
    {
        OwnEnum parsed;
        return parsed.SetFromString("OWN_" + std::to_string(_last)) && parsed == _last;
    }

private:
    static constinit unsigned _last;
};
constinit unsigned OwnEnum::_last = MinimumValue;

bool HasValues()
{
    return nxErrorEnum(1000112).GetShortDescription() == "NOT_REGISTERED" &&
           nxErrorEnum(NX_ERR_NOT_FOUND).GetLongDescription() == "not found" &&
           nxEnum::IsRegisteredEnumValue(NX_BOOL_TRUE) && !nxEnum::IsRegisteredEnumValue(1000112);
}

bool HasNames()
{
    nxErrorEnum parsed;
    return parsed.SetFromString("NX_ERR_NO_MATCH") && parsed == NX_ERR_NO_MATCH && !parsed.SetFromString("NX_ERR_NO");
}

bool HasOwn() { return OwnEnum::Register() && OwnEnum::IsRegistered(); }

bool HasWalks()
{
    std::vector<nxEnumValue> values;
    nxErrorEnum().GetRegisteredEnumValuesForInstance(values);
    return values.size() == 581 && nxRefusedTexts::Get().empty();
}

bool HasTextsWithoutMemory()
{
    nxAllocations::remaining = nxAllocations::areCounted ? 0 : -1;
    const bool hasTexts = HasValues() && HasNames();
    nxAllocations::remaining = -1;
    return hasTexts;
}

bool HasTextsInTwoThreads()
{
    bool hasValues = false;
    std::thread other([&] { hasValues = HasValues() && HasNames(); });
    const bool hasNames = HasNames() && HasValues();
    other.join();
    return hasValues && hasNames;
}

// Children of a process that is registering.
bool HasTextsInChildren()
{
    bool isRegistered = true;
    std::thread other(
        [&]
        {
            for (int i = 0; i != 2000; ++i)
                isRegistered &= OwnEnum::Register();
        });
    bool isComplete = true;
    for (int i = 0; i != 10; ++i)
    {
        int status = 1;
        const pid_t child = fork();
        if (child == 0)
            _exit(HasValues() && HasNames() && nxEnum::IsRegisteredEnumValue(NX_BOOL_FALSE) && OwnEnum::Register() ? 0
                                                                                                                   : 1);
        isComplete &= waitpid(child, &status, 0) == child && status == 0;
    }
    other.join();
    return isComplete && isRegistered;
}

struct Step
{
    bool (*isComplete)();
    bool afterInitialisers;  // before them there are neither strings nor handlers of forks
};
constexpr Step steps[] = {{HasValues, false},
                          {HasNames, false},
                          {HasOwn, false},
                          {HasWalks, false},
                          {HasTextsInTwoThreads, false},
                          {HasTextsWithoutMemory, true},
                          {HasTextsInChildren, true}};

std::size_t GetFirst()
{
    const char* const first = std::getenv("NX_TEST_FIRST");
    return first != nullptr ? static_cast<std::size_t>(std::atoi(first)) : 0;
}

bool IsComplete(bool isEarly = false)
{
    bool isComplete = true;
    for (std::size_t i = 0; i != std::size(steps); ++i)
        if (const Step& step = steps[(GetFirst() + i) % std::size(steps)]; !isEarly || !step.afterInitialisers)
            isComplete &= step.isComplete();
        else if (i == 0)
            break;
    return isComplete;
}

struct EarlyAndLate
{
    EarlyAndLate() : wasComplete(IsComplete(true)) {}
    ~EarlyAndLate()
    {
        if (!wasComplete || !IsComplete())
        {
            std::fputs("a text was missing or refused before or after main\n", stderr);
            std::_Exit(1);
        }
    }
    bool wasComplete;
};

[[gnu::init_priority(101)]] const EarlyAndLate earlyAndLate;
}  // namespace

int main() { return IsComplete() ? 0 : 1; }
