// SPDX-License-Identifier: Apache-2.0
// Linked at a fixed address: what the library changes is what inline functions read, and its types are the program's.
#include <cstdio>

#include "core/nxCore.h"

int main()
{
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_FATAL);
    const bool isQuiet = !nxLogManager::ShouldLog(NX_LOG_LEVEL_ERROR);
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_DEBUG);
    const bool isLoud = nxLogManager::ShouldLog(NX_LOG_LEVEL_DEBUG);

    std::vector<std::string> symbols;
    char program[] = "program", option[] = "-symbol", first[] = "A", second[] = "B";
    char* arguments[] = {program, option, first, option, second, nullptr};
    nxCmdLineArgs::GetInstance().Initialise(arguments, nullptr);
    nxOptions options("Repeats.");
    options.Add("symbol", symbols, "S", "a symbol");
    const bool isRepeated = options.Read().IsOK() && symbols.size() == 2;

    const bool hasTexts = nxErrorEnum(NX_ERR_NOT_FOUND).GetLongDescription() == "not found" &&
                          nxProductStateBitMask(2).GetShortDescription(" ") == "CLOSED";
    const bool hasTime = nxTimeStamp::Now() != nxTimeStamp();
    std::printf("%d %d %d %d %d\n", isQuiet, isLoud, isRepeated, hasTexts, hasTime);
    return isQuiet && isLoud && isRepeated && hasTexts && hasTime ? 0 : 1;
}
