// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogLevels.h"

#include <memory>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogEnvironment.h"
#include "core/log/internal/nxLogLevelFile.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogOwnReport.h"
#include "core/text/nxPrintableText.h"

namespace
{
template <class Action>
nxErrorEnum WithMemory(const Action& action) noexcept
{
    try
    {
        return action();
    }
    catch (...)
    {
        return nxErrorEnum(NX_ERR_INSUFFICIENT_MEMORY);
    }
}

constexpr const char* levelsSource = "core/trunk/nxLogLevels";
}  // namespace

nxLogLevelSettings nxLogLevelSettings::Read()
{
    return {nxLogEnvironment::Get("NX_LOG_LEVELS"), nxLogEnvironment::Get("NX_LOG_LEVEL_FILE")};
}

nxErrorEnum nxLogLevels::Set(std::string_view rules, std::string* fault) noexcept
{
    return WithMemory(
        [rules, fault]
        {
            const auto read = std::make_shared<nxLogLevelRules>();
            std::string what;
            const nxErrorEnum error = nxLogLevelRules::Read(rules, *read, what);
            if (error.IsOK())
                nxLogLevelState::GetInstance().SetRules(read);
            else if (fault != nullptr)
                *fault = std::move(what);
            return error;
        });
}

nxErrorEnum nxLogLevels::SetLevelFor(std::string_view where, const nxLogLevelEnum& level) noexcept
{
    return WithMemory(
        [where, &level]
        {
            std::string fault;
            return nxLogLevelState::GetInstance().AddRule(where, level.GetEnumValue(), fault);
        });
}

void nxLogLevels::Clear() noexcept { nxLogLevelState::GetInstance().SetRules(nullptr); }

std::vector<nxLogLevelRule> nxLogLevels::GetRules()
{
    const nxLogLevelState::Rules rules = nxLogLevelState::GetInstance().GetRules();
    return rules != nullptr ? rules->GetRules() : std::vector<nxLogLevelRule>();
}

nxLogLevelEnum nxLogLevels::GetLevelFor(std::string_view path) noexcept
{
    return nxLogLevelEnum(nxLogLevelState::GetInstance().GetLevelFor(path));
}

nxErrorEnum nxLogLevels::SetFile(std::string_view path) noexcept
{
    if (!path.empty() && (path.front() != '/' || path.find('\0') != std::string_view::npos))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return WithMemory(
        [path]
        {
            nxLogLevelFile::GetInstance().Watch(std::string(path));
            if (!path.empty())
                nxLogBell::EnsureRunning();
            return nxErrorEnum();
        });
}

std::string nxLogLevels::GetFile() { return nxLogLevelFile::GetInstance().GetPath(); }

void nxLogLevels::Apply(const nxLogLevelSettings& settings) noexcept
{
    static_cast<void>(WithMemory(
        [&settings]
        {
            std::string fault;
            if (!settings.rules.empty() && !Set(settings.rules, &fault).IsOK())
                nxLogOwnReport::Write(NX_LOG_LEVEL_WARNING, levelsSource, 98, "NX_LOG_LEVELS is left out. In ", fault);
            if (!settings.file.empty() && !SetFile(settings.file).IsOK())
                nxLogOwnReport::Write(NX_LOG_LEVEL_WARNING, levelsSource, 100,
                                      "NX_LOG_LEVEL_FILE is left out, it names no absolute path: ",
                                      nxPrintableText::GetQuoted(settings.file));
            return nxErrorEnum();
        }));
}
