// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFileNames.h"

#include <algorithm>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxLocalZone.h"
#include "core/platform/nxProcess.h"
#include "core/process/nxApplicationName.h"
#include "core/time/nxCalendar.h"

namespace
{
void AppendTwo(std::string& text, unsigned number)
{
    text += static_cast<char>('0' + number / 10);
    text += static_cast<char>('0' + number % 10);
}

// "090703", the local time of a moment.
std::string TimeText(long long second)
{
    nxLocalMinute minute;
    if (!nxLocalZone::FindAndCheck(second, minute))
        return "000000";
    std::string text;
    AppendTwo(text, minute.hour);
    AppendTwo(text, minute.minute);
    AppendTwo(text, minute.firstSecond + static_cast<unsigned>(second - minute.begin));
    return text;
}
}  // namespace

void nxLogFileNames::Set(const std::string& directory, const char* defaultDirectory, const std::string& application)
{
    // The default directory is relative, and another user may have made it: it is checked like all below the root.
    _root = directory.empty() ? "." : directory;
    _folder = directory.empty() ? defaultDirectory : "";
    _application = application;
}

void nxLogFileNames::ReadProcess()
{
    const unsigned process = nxProcess::GetID();
    if (process == _process)
        return;
    _process = process;
    _startTime = TimeText(nxProcess::GetStartTime().seconds);
    _sequence = 1;
}

std::string nxLogFileNames::GetDirectory() const { return _folder.empty() ? _root : _folder; }

std::string nxLogFileNames::GetNext(const std::string& date) const
{
    return GetPrefix(date) + '_' + _startTime + '_' + std::to_string(_process) + '_' + std::to_string(_sequence) +
           ".log";
}

std::string nxLogFileNames::GetDate(long long second)
{
    nxLocalMinute minute;
    if (!nxLocalZone::FindAndCheck(second, minute))
        return "";
    std::string text;
    AppendTwo(text, minute.day);
    text += nxCalendar::GetMonthName(minute.month);
    return text + std::to_string(minute.year);
}

std::string nxLogFileNames::GetToday() { return GetDate(nxClock::Now().seconds); }

std::string nxLogFileNames::ReadApplication()
{
    constexpr std::size_t longestName = 64;
    std::string name = nxApplicationName::Get();
    if (name.empty())
        name = nxProcess::GetProgramName();
    name.resize(std::min(name.size(), longestName));
    for (char& c : name)
    {
        const bool isPlain = ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '-';
        if (!isPlain)
            c = '-';
    }
    return name.empty() ? "application" : name;
}
