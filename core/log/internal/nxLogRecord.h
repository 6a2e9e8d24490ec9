#ifndef CORE_LOG_INTERNAL_NXLOGRECORD_H
#define CORE_LOG_INTERNAL_NXLOGRECORD_H

#include <algorithm>

#include "core/platform/nxClock.h"
#include "core/time/nxTimeStamp.h"

struct nxLogSource;

/// What devices and lines are made of: one record, wherever its bytes are. Owns nothing.
struct nxLogRecord
{
    unsigned level;
    nxClockTime time;
    unsigned threadIndex;
    unsigned processor;
    const nxLogSource* source;  ///< Null for a record with a file name of its own.
    const char* file;           ///< Terminated.
    unsigned line;
    const char* values;
    const char* end;
    char timeText[nxTimeStamp::TextSize];  ///< Made by MakeTimeText(); several lines may need it.
    unsigned timeSize = 0;

    void MakeTimeText() noexcept
    {
        const unsigned written = nxTimeStamp(time.seconds, time.nanoseconds).GetAsStringFast(timeText, sizeof timeText);
        timeSize = written == 0 ? 0 : written - 1;
        if (written == 0)
            std::fill_n(timeText, sizeof timeText, '\0');
    }
};

/// What an nxLog has beyond the values of a statement, as it stands in the queue. The file follows with a NUL.
struct nxLogObjectFields
{
    long long seconds;
    unsigned nanoseconds;
    unsigned threadIndex;
    unsigned line;
    unsigned fileSize;  ///< Without the NUL.
};

#endif
