// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogSetUp.h"

#include <atomic>

#include "core/enum/nxRefusedTexts.h"
#include "core/log/nxConsoleLogDevice.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogIdleSettings.h"
#include "core/log/nxLogLevels.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSettings.h"

namespace
{
// Enumerations and masks register silently, because there is no log yet. What was refused is told here, once.
void TellRefusedTexts()
{
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
}  // namespace

bool nxLogSetUp(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    const nxLogSettings settings = nxLogSettings::Read();
    nxLogManager::GetInstance().Apply(settings);
    nxLogManager::GetInstance().Apply(nxLogThreadSettings::Read());
    nxLogIdleSettings::Read().Apply();
    nxLogLevels::Apply(nxLogLevelSettings::Read());
    nxFileLogDevice& file = nxFileLogDevice::GetInstance();
    file.Create(maximumFileSize, SetUpConsole(settings.console));
    TellRefusedTexts();
    return !file.GetFileName().empty();
}
