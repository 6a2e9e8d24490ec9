// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogSetUp.h"

#include <array>
#include <atomic>

#include "core/enum/nxRefusedTexts.h"
#include "core/log/nxConsoleLogDevice.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxJournalLogDevice.h"
#include "core/log/nxLogDeviceSettings.h"
#include "core/log/nxLogIdleSettings.h"
#include "core/log/nxLogLevels.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSettings.h"
#include "core/log/nxSyslogLogDevice.h"

namespace
{
// Enumerations and masks register silently, because there is no log yet. What was refused is told here, once.
void TellRefusedTexts()
{
    // The default order, because each set-up does it once. The sentences themselves are acquired by nxRefusedTexts.
    static std::atomic<std::size_t> told = 0;
    const std::vector<std::string> sentences = nxRefusedTexts::Get();
    for (std::size_t i = told.exchange(sentences.size()); i < sentences.size(); ++i)
        NX_LOG(NX_LOG_LEVEL_ERROR) << sentences[i];
}

// @return the console's device; null when the environment wants none.
nxLogDevice* SetUpConsole(nxLogSettings::Console form)
{
    if (form == nxLogSettings::Console::Off)
        return nullptr;
    nxConsoleLogDevice& console = nxConsoleLogDevice::GetInstance();
    console.SetVerboseOutput(form == nxLogSettings::Console::Verbose);
    console.SetShortForm(form == nxLogSettings::Console::TimeAndText ? nxConsoleLogDevice::ShortForm::Time
                                                                     : nxConsoleLogDevice::ShortForm::Level);
    return &console;
}

// @return the devices of the log services that the environment asks for; null for the others.
std::array<nxLogDevice*, 2> SetUpServices()
{
    const nxLogDeviceSettings settings = nxLogDeviceSettings::Read();
    const auto setUp = [&settings](nxSeparateLogDevice& device)
    {
        device.SetMaximumBytes(settings.megabytes << 20);
        return &device;
    };
    return {settings.journal.empty() ? nullptr : setUp(nxJournalLogDevice::GetInstance()),
            settings.syslog.empty() ? nullptr : setUp(nxSyslogLogDevice::GetInstance())};
}
}  // namespace

bool nxLogSetUp(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    const nxLogSettings settings = nxLogSettings::Read();
    nxLogManager::GetInstance().Apply(settings);
    nxLogManager::GetInstance().Apply(nxLogThreadSettings::Read());
    nxLogIdleSettings::Read().Apply();
    nxLogLevels::Apply(nxLogLevelSettings::Read());
    nxFileLogDevice& file = nxFileLogDevice::GetInstance();
    const auto [journal, syslog] = SetUpServices();
    nxLogDevice* const others[] = {SetUpConsole(settings.console), journal, syslog};
    file.Create(maximumFileSize, others);
    TellRefusedTexts();
    return !file.GetFileName().empty();
}
