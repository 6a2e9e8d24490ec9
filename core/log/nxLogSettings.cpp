// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogSettings.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "core/platform/nxEnvironment.h"
#include "core/process/inline/nxConfigurationKeys.h"
#include "core/process/nxEnvironmentCopy.h"

namespace
{
std::string Get(const std::string& key)
{
    return nxEnvironment::IsSecureExecution() ? std::string() : nxEnvironmentCopy::GetValue(key);
}

bool GetBool(const std::string& key, bool defaultValue)
{
    return nxEnvironment::IsSecureExecution() ? defaultValue : nxEnvironmentCopy::GetBool(key, defaultValue);
}

std::uint64_t GetNumber(const std::string& key, std::uint64_t defaultValue, std::uint64_t smallest,
                        std::uint64_t largest)
{
    const std::string text = Get(key);
    const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber)
        return defaultValue;
    std::uint64_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
        return largest;
    return std::clamp(number, smallest, largest);
}

nxLogLevelEnum GetLevel()
{
    const std::string text = Get(QRX_LOG_LEVEL);
    for (unsigned value = NX_LOG_LEVEL_DEBUG; value <= NX_LOG_LEVEL_FATAL; ++value)
        if (const nxLogLevelEnum level(static_cast<nxEnumValue>(value)); text == level.GetShortDescription())
            return level;
    return nxLogLevelEnum();
}

nxLogSettings::Console GetConsole()
{
    std::string text = Get(QRX_LOG_TO_CONSOLE);
    for (char& c : text)
        if ('a' <= c && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
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
    const std::string text = Get("NX_LOG_THREAD_PROCESSORS");
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
    settings.directory = Get(QRX_LOG_DIRECTORY);
    settings.console = GetConsole();
    settings.forceFlush = GetBool(QRX_LOG_FORCE_FLUSH, settings.forceFlush);
    settings.secondsBetweenFlushes =
        GetNumber(QRX_LOG_TIME_BETWEEN_FLUSHES, settings.secondsBetweenFlushes, 0, LargestTimeBetweenFlushes);
    settings.fileBufferMegabytes =
        GetNumber(QRX_LOG_FILE_BUFF_SIZE_MB, settings.fileBufferMegabytes, 1, LargestFileBufferMegabytes);
    settings.reservedEntries =
        GetNumber(QRX_LOG_BUFF_RESERVE_ENTRIES, settings.reservedEntries, 0, LargestReservedEntries);
    settings.threadIndex = GetBool(QRX_LOG_THREAD_INDEX, settings.threadIndex);
    settings.recreateOnChangeOfDate = GetBool(QRX_LOG_RECREATE_ON_CHANGE_OF_DATE, settings.recreateOnChangeOfDate);
    return settings;
}

nxLogThreadSettings nxLogThreadSettings::Read()
{
    return {GetProcessors(), static_cast<unsigned>(GetNumber("NX_LOG_THREAD_PRIORITY", 0, 0, LargestPriority))};
}
