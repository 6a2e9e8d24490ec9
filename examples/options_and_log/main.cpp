// SPDX-License-Identifier: Apache-2.0
// A process with options and a log: what main does before the work begins.
//
//     example_options_and_log -help
//     example_options_and_log -symbol WTI -price -36.98 -verbose
//     QRX_LOG_DIRECTORY=/var/log/quotes QRX_LOG_LEVEL=DBG example_options_and_log -symbol WTI
//
// The records go to a file below that directory, "logs" unless set; with QRX_LOG_TO_CONSOLE=TRUE to standard output
// too.

#include <unistd.h>

#include <iostream>
#include <string>

#include "core/nxCore.h"

namespace
{
// What the command line and the environment say; here are the defaults.
struct Settings
{
    std::string symbol;
    nxDecimal price = nxDecimal::GetNullDecimal();
    unsigned lots = 1;
    bool isPassive = true;
    bool isVerbose = false;
};

// For statements of NX_LOG.
nxLog& operator<<(nxLog& record, const Settings& settings)
{
    return record << settings.lots << " of " << settings.symbol << " at " << settings.price
                  << (settings.isPassive ? ", passively" : "");
}

void Declare(nxOptions& options, Settings& settings)
{
    options.Add("symbol", settings.symbol, "NAME", "what is quoted").Required();
    options.Add("price", settings.price, "P", "price of the quote");  // a negative number is a value: -price -36.98
    options.Add("lots", settings.lots, "N", "size of the quote").Between(1, 1000);
    options.Add("passive", settings.isPassive, "never crosses the market").FromEnvironment(QRX_PASSIVE_MODE);
    options.Add("verbose", settings.isVerbose, "writes options and environment to the log");
}

void Run(const Settings& settings)
{
    // Arguments of a record below the threshold are not even evaluated.
    NX_LOG(NX_LOG_LEVEL_DEBUG) << "host " << nxApplicationData::GetHostName();
    NX_LOG(NX_LOG_LEVEL_INFO) << nxApplicationData::GetApplicationName() << " quotes " << settings;
    if (settings.price.IsNegative())
        NX_LOG(NX_LOG_LEVEL_WARNING) << "a negative price: " << settings.price;

    std::cout << settings.symbol << ' ' << settings.price << '\n';
}
}  // namespace

int main(int, char** argv)
{
    nxCmdLineArgs& args = nxCmdLineArgs::GetInstance();
    args.Initialise(argv, environ);  // first of all: everybody else reads settings through it

    Settings settings;
    nxOptions options("Quotes one symbol.");
    Declare(options, settings);
    if (!options.Read().IsOK())
    {
        std::cerr << options.GetErrorText();
        return 2;
    }
    if (options.IsHelpWanted())
    {
        std::cout << options.GetHelp();
        return 0;
    }

    nxApplicationData::SetApplicationName("quoter");
    if (args.GetEnvValue(QRX_LOG_DIRECTORY).empty())
        args.SetEnvValue(QRX_LOG_DIRECTORY, "logs");  // the application's own default
    if (!nxLogSetUp())
        std::cerr << "no log file; going on without\n";
    if (settings.isVerbose)
        args.Dump(nxLogLevelEnum(NX_LOG_LEVEL_INFO));  // one record an entry, passwords masked

    // Records travel through a thread of their own; what waits when main returns is still written.
    Run(settings);
    return 0;
}
