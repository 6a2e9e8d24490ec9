// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogLevelState.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "core/log/inline/nxLogGate.h"
#include "core/log/internal/nxLogSwitches.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// What the verdicts follow from, in one word, so that a signal handler may change it. NX_ENUM_UNDEFINED, which is 0, means
// that there is none; all levels fit into a byte.
struct alignas(std::uint32_t) LevelWord
{
    std::uint8_t program;  // the level for all
    std::uint8_t file;     // the same, in the level file
    std::uint8_t lowest;   // of the rules in force
    std::uint8_t highest;

    nxEnumValue GetForAll() const { return static_cast<nxEnumValue>(file != 0 ? file : program); }
};
static_assert(nxLogLevelEnum::MaximumValue <= 0xFF && NX_ENUM_UNDEFINED == 0);

// The default order, with that of the verdicts: see _Publish(). Relaxed where it is only read: it orders no other memory.
constinit std::atomic<LevelWord> levelWord{{NX_LOG_LEVEL_INFO, 0, 0, 0}};
static_assert(std::atomic<LevelWord>::is_always_lock_free);

std::uint8_t ToByte(nxEnumValue level) { return static_cast<std::uint8_t>(level); }

bool IsSameWord(const LevelWord& one, const LevelWord& other)
{
    return one.program == other.program && one.file == other.file && one.lowest == other.lowest &&
           one.highest == other.highest;
}

// For NX_LOG_LEVEL_INFO, the level for all at first.
template <std::size_t... Level>
constexpr std::array<std::atomic<signed char>, sizeof...(Level)> MakeFirstVerdicts(std::index_sequence<Level...>)
{
    return {std::atomic<signed char>(NX_LOG_LEVEL_INFO <= Level && Level < nxLogLevelEnum::MaximumValue)...};
}
}  // namespace

alignas(64) constinit std::array<std::atomic<signed char>, nxLogGate::_levels> nxLogGate::_verdicts =
    MakeFirstVerdicts(std::make_index_sequence<_levels>());

bool nxLogGate::_Ask(nxEnumValue level, nxLogSite& site) noexcept
{
    return nxLogLevelState::ShouldLog(level, *site.GetSource());
}

nxLogLevelState& nxLogLevelState::GetInstance() noexcept
{
    alignas(nxLogLevelState) static unsigned char storage[sizeof(nxLogLevelState)];
    static nxLogLevelState& state = *::new (storage) nxLogLevelState;
    return state;
}

// A thread that was overtaken while it stored looks again, so that the last store follows from the last word. Needs all
// these operations in one order, as the default of atomics is.
void nxLogLevelState::_Publish() noexcept
{
    for (LevelWord word = levelWord.load();;)
    {
        const nxEnumValue forAll = word.GetForAll();
        const bool hasRules = word.lowest != 0;
        const nxEnumValue lowest = hasRules ? std::min(forAll, static_cast<nxEnumValue>(word.lowest)) : forAll;
        const nxEnumValue certain = std::max(forAll, static_cast<nxEnumValue>(word.highest));
        for (unsigned level = nxLogLevelEnum::MinimumValue + 1; level < nxLogLevelEnum::MaximumValue; ++level)
            nxLogGate::_verdicts[level].store(level >= certain ? 1 : level >= lowest ? -1 : 0);
        nxLogSwitches::SetThreshold(lowest);
        const LevelWord now = levelWord.load();
        if (IsSameWord(now, word))
            return;
        word = now;
    }
}

template <class Change>
void nxLogLevelState::_Change(const Change& change) noexcept
{
    LevelWord before = levelWord.load();
    LevelWord after;
    do
    {
        after = before;
        change(after);
    } while (!levelWord.compare_exchange_weak(before, after));
    _Publish();
}

void nxLogLevelState::SetLevelForAll(nxEnumValue level) noexcept
{
    _Change([level](LevelWord& word) { word.program = ToByte(level); });
}

nxEnumValue nxLogLevelState::GetLevelForAll() noexcept { return levelWord.load().GetForAll(); }

bool nxLogLevelState::HasRules() noexcept { return levelWord.load(std::memory_order_relaxed).lowest != 0; }

void nxLogLevelState::SetRules(Rules rules) noexcept
{
    // What held before is destroyed without the mutex.
    if (rules != nullptr && rules->GetLevelForAll() != NX_ENUM_UNDEFINED)
        SetLevelForAll(rules->GetLevelForAll());
    const nxMutexGuard guard(_mutex);
    _rules.swap(rules);
    _Enforce();
}

nxErrorEnum nxLogLevelState::AddRule(std::string_view where, nxEnumValue level, std::string& fault)
{
    const nxMutexGuard guard(_mutex);
    const auto rules = std::make_shared<nxLogLevelRules>(_rules != nullptr ? *_rules : nxLogLevelRules());
    const nxErrorEnum error = rules->Set(where, level, fault);
    if (!error.IsOK())
        return error;
    _rules = rules;
    _Enforce();
    return error;
}

void nxLogLevelState::SetFileRules(Rules rules) noexcept
{
    const nxMutexGuard guard(_mutex);
    _fileRules.swap(rules);
    _Enforce();
}

// The sources first: until the word is changed, the verdicts that have them asked are those of before.
void nxLogLevelState::_Enforce() noexcept
{
    const Rules& rules = _GetInForce();
    nxLogSourceTable::GetInstance().SetRules(rules);
    const std::uint8_t file = ToByte(_fileRules != nullptr ? _fileRules->GetLevelForAll() : NX_ENUM_UNDEFINED);
    const std::uint8_t lowest = ToByte(rules != nullptr ? rules->GetLowest() : NX_ENUM_UNDEFINED);
    const std::uint8_t highest = ToByte(rules != nullptr ? rules->GetHighest() : NX_ENUM_UNDEFINED);
    _Change([=](LevelWord& word) { word = {word.program, file, lowest, highest}; });
}

nxLogLevelState::Rules nxLogLevelState::GetRules() noexcept
{
    const nxMutexGuard guard(_mutex);
    return _GetInForce();
}

nxEnumValue nxLogLevelState::GetLevelFor(std::string_view path) noexcept
{
    const Rules rules = GetRules();
    const nxEnumValue level = rules != nullptr ? rules->Find(path) : NX_ENUM_UNDEFINED;
    return level != NX_ENUM_UNDEFINED ? level : GetLevelForAll();
}

bool nxLogLevelState::ShouldLog(nxEnumValue level, std::string_view path) noexcept
{
    return level >= (HasRules() ? GetInstance().GetLevelFor(path) : GetLevelForAll());
}

bool nxLogLevelState::ShouldLog(nxEnumValue level, const nxLogSource& source) noexcept
{
    const nxEnumValue ofRule = nxLogKeptSource::Of(source).level.load(std::memory_order_relaxed);
    return level >= (ofRule != NX_ENUM_UNDEFINED ? ofRule : GetLevelForAll());
}

bool nxLogLevelState::IsUnwanted(nxEnumValue level, const nxLogSource* source) noexcept
{
    return source != nullptr && nxLogKeptSource::Of(*source).isOfOldProgram && !ShouldLog(level, *source);
}

void nxLogLevelState::BeforeFork() noexcept { nxForkMutex::Take(_mutex); }

void nxLogLevelState::AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }

void nxLogLevelState::AfterForkInChild() noexcept { nxForkMutex::Renew(_mutex); }
