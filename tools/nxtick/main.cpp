// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <exception>
#include <string>

#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "Request.h"
#include "Terminal.h"
#include "core/app/nxApplicationData.h"
#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxConfigurationKeys.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogMacros.h"
#include "core/nxVersion.h"

namespace
{
// A log file where a directory is configured. Standard output belongs to the rows, so the log never goes there.
void OpenLog(const nxCmdLineArgs& args)
{
    nxApplicationData::SetApplicationName("nxtick");
    if (!args.GetEnvValue(QRX_LOG_DIRECTORY).empty())
        nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>());
}

int Run()
{
    const nxtick::Request request = nxtick::ReadRequest(nxCmdLineArgs::GetInstance().GetRawArgv());
    switch (request.action)
    {
        case nxtick::Request::Action::Version:
            nxtick::OutputFile::Print("nxtick " NX_CORE_VERSION "\n");
            return 0;
        case nxtick::Request::Action::List:
            return nxtick::List(request);
        case nxtick::Request::Action::Bands:
            return nxtick::Bands(request);
        case nxtick::Request::Action::Price:
            return nxtick::Price(request);
        case nxtick::Request::Action::Ladder:
            return nxtick::Ladder(request);
        case nxtick::Request::Action::Chart:
            return nxtick::Chart(request);
        case nxtick::Request::Action::Snap:
            return nxtick::Snap(request);
        case nxtick::Request::Action::Help:
            break;
    }
    nxtick::OutputFile::Print(nxtick::GetHelp());
    return 0;
}
}  // namespace

int main(int, char** argv, char** envp)
{
    nxtick::OpenClosedStreams();
    ::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow any more is reported as any other failure to write
    nxCmdLineArgs::GetInstance().Initialise(argv, envp);
    try
    {
        OpenLog(nxCmdLineArgs::GetInstance());
        return Run();
    }
    catch (const std::exception& failure)
    {
        NX_LOG(NX_LOG_LEVEL_ERROR) << failure.what();
        nxtick::WriteError("nxtick: " + std::string(failure.what()) + "\n");
        return 2;
    }
}
