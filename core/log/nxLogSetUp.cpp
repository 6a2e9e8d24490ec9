#include "core/log/nxLogSetUp.h"

#include "core/log/nxConsoleLogDevice.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSettings.h"

namespace
{
void SetUpConsole(nxLogSettings::Console form)
{
    if (form == nxLogSettings::Console::Off)
        return;
    nxConsoleLogDevice& console = nxConsoleLogDevice::GetInstance();
    console.SetVerboseOutput(form == nxLogSettings::Console::Verbose);
    console.SetShortForm(form == nxLogSettings::Console::TimeAndText ? nxConsoleLogDevice::ShortForm::Time
                                                                     : nxConsoleLogDevice::ShortForm::Level);
    nxLogManager::GetInstance().RegisterLogDevice(&console);
}
}  // namespace

bool nxLogSetUp(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    const nxLogSettings settings = nxLogSettings::Read();
    nxLogManager::GetInstance().Apply(settings);
    SetUpConsole(settings.console);
    nxFileLogDevice& file = nxFileLogDevice::GetInstance();
    file.Create(maximumFileSize);
    return !file.GetFileName().empty();
}
