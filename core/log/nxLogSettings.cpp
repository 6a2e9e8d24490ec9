// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogSettings.h"

#include <charconv>
#include <system_error>

#include "core/log/internal/nxLogEnvironment.h"
#include "core/process/inline/nxConfigurationKeys.h"

namespace
{
nxLogLevelEnum GetLevel()
{
    const std::string text = nxLogEnvironment::Get(QRX_LOG_LEVEL);
    if (text.empty())
        return nxLogLevelEnum();
    for (unsigned value = NX_LOG_LEVEL_DEBUG; value <= NX_LOG_LEVEL_FATAL; ++value)
        if (const nxLogLevelEnum level(static_cast<nxEnumValue>(value)); text == level.GetShortDescription())
            return level;
    return nxLogLevelEnum();
}

nxLogSettings::Console GetConsole()
{
    const std::string text = nxLogEnvironment::GetCapitals(QRX_LOG_TO_CONSOLE);
    if (text == "TRUE" || text == "YES")
        return nxLogSettings::Console::Verbose;
    if (text == "BRIEF")
        return nxLogSettings::Console::LevelAndText;
    if (text == "TERSE")
        return nxLogSettings::Console::TimeAndText;
    return nxLogSettings::Console::Off;
}

// "0,2-5". A text that is anything else gives none at all.
std::vector<unsigned> GetProcessors()
{
    const std::string text = nxLogEnvironment::Get("NX_LOG_THREAD_PROCESSORS");
    std::vector<unsigned> processors;
    const char* at = text.data();
    const char* const end = at + text.size();
    const auto read = [&at, end](unsigned& number)
    {
        const auto [stop, error] = std::from_chars(at, end, number);
        at = stop;
        return error == std::errc() && number <= nxLogThreadSettings::LargestProcessor;
    };
    while (at != end)
    {
        unsigned first = 0;
        if (!read(first))
            return {};
        unsigned last = first;
        if (at != end && *at == '-' && (++at, !read(last) || last < first))
            return {};
        for (unsigned processor = first; processor <= last; ++processor)
            processors.push_back(processor);
        if (at != end && (*at++ != ',' || at == end))
            return {};
    }
    return processors;
}
}  // namespace

nxLogSettings nxLogSettings::Read()
{
    nxLogSettings settings;
    settings.level = GetLevel();
    settings.directory = nxLogEnvironment::Get(QRX_LOG_DIRECTORY);
    settings.console = GetConsole();
    settings.forceFlush = nxLogEnvironment::GetBool(QRX_LOG_FORCE_FLUSH, settings.forceFlush);
    settings.secondsBetweenFlushes = nxLogEnvironment::GetNumber(
        QRX_LOG_TIME_BETWEEN_FLUSHES, settings.secondsBetweenFlushes, 0, LargestTimeBetweenFlushes);
    settings.fileBufferMegabytes = nxLogEnvironment::GetNumber(QRX_LOG_FILE_BUFF_SIZE_MB, settings.fileBufferMegabytes,
                                                               1, LargestFileBufferMegabytes);
    settings.reservedEntries =
        nxLogEnvironment::GetNumber(QRX_LOG_BUFF_RESERVE_ENTRIES, settings.reservedEntries, 0, LargestReservedEntries);
    settings.threadIndex = nxLogEnvironment::GetBool(QRX_LOG_THREAD_INDEX, settings.threadIndex);
    settings.recreateOnChangeOfDate =
        nxLogEnvironment::GetBool(QRX_LOG_RECREATE_ON_CHANGE_OF_DATE, settings.recreateOnChangeOfDate);
    return settings;
}

nxLogThreadSettings nxLogThreadSettings::Read()
{
    return {GetProcessors(),
            static_cast<unsigned>(nxLogEnvironment::GetNumber("NX_LOG_THREAD_PRIORITY", 0, 0, LargestPriority))};
}
