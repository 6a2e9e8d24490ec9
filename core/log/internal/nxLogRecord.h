#ifndef CORE_LOG_INTERNAL_NXLOGRECORD_H
#define CORE_LOG_INTERNAL_NXLOGRECORD_H

#include "core/platform/nxClock.h"

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
