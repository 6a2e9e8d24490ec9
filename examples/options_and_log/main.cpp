// A process with options and a log: what main does before the work begins.
//
//     example_options_and_log -symbol WTI -price -36.98 -verbose
//     QRX_LOG_DIRECTORY=/var/log/quotes QRX_LOG_LEVEL=DBG example_options_and_log -symbol WTI
//
// The records go to a file below that directory, "logs" unless set; with QRX_LOG_TO_CONSOLE=TRUE to standard output
// too.

#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "core/log/nxLogMacros.h"
#include "core/nxCore.h"

namespace
{
int Usage(const std::string& complaint)
{
    std::cerr << complaint << "\nusage: example_options_and_log -symbol NAME [-price P] [-verbose]\n";
    return 2;
}

int Run(const nxCmdLineArgs& args)
{
    std::vector<std::string> rest;
    args.GetUnprocessedArgs(rest);
    if (!rest.empty())
        return Usage("'" + rest.front() + "' belongs to no option");

    const std::string symbol = args.GetArgValue("symbol");
    if (symbol.empty())
        return Usage("-symbol is missing");

    // A negative number is a value, not an option: -price -36.98 works. What is missing or no number is null.
    const nxDecimal price = args.GetArgValueAsDecimal("price");
    if (args.IsArgDefined("price") && price.IsNull())
        return Usage("-price wants a number");

    // Environment settings have defaults of the application's choice.
    const bool passive = args.GetEnvValueAsBool(QRX_PASSIVE_MODE, true);

    // Arguments of a record below the threshold are not even evaluated.
    NX_LOG(NX_LOG_LEVEL_DEBUG) << "host " << nxApplicationData::GetHostName();
    NX_LOG(NX_LOG_LEVEL_INFO) << nxApplicationData::GetApplicationName() << " quotes " << symbol << " at " << price
                              << (passive ? ", passively" : "");
    if (price.IsNegative())
        NX_LOG(NX_LOG_LEVEL_WARNING) << "a negative price: " << price;

    std::cout << symbol << ' ' << price << '\n';
    return 0;
}
}  // namespace

int main(int, char** argv)
{
    nxCmdLineArgs& args = nxCmdLineArgs::GetInstance();
    args.Initialise(argv, environ);  // first of all: everybody else reads settings through it
    nxApplicationData::SetApplicationName("quoter");
    if (args.GetEnvValue(QRX_LOG_DIRECTORY).empty())
        args.SetEnvValue(QRX_LOG_DIRECTORY, "logs");  // the application's own default
    if (!nxLogSetUp())
        std::cerr << "no log file; going on without\n";
    if (args.IsArgDefined("verbose"))
        args.Dump(nxLogLevelEnum(NX_LOG_LEVEL_INFO));  // one record an entry, passwords masked

    // Records travel through a thread of their own; what waits when main returns is still written.
    return Run(args);
}
