#ifndef CORE_LOG_INTERNAL_NXLOGRECORD_H
#define CORE_LOG_INTERNAL_NXLOGRECORD_H

#include "core/log/inline/nxLogSource.h"
#include "core/platform/inline/nxClock.h"

/// What devices and lines are made of: one record, wherever its bytes are. Owns nothing.
struct nxLogRecord
{
    unsigned level;
    nxClockTime time;
    unsigned threadIndex;
    unsigned processor;
    const nxLogSource* source;      ///< Null for a record with a place of its own:
    const char* ownFile = nullptr;  ///< terminated,
    unsigned ownLine = 0;           ///< and the line in it.
    const char* values;
    const char* end;

    const char* GetFile() const { return source != nullptr ? source->file : ownFile; }
    unsigned GetLine() const { return source != nullptr ? source->line : ownLine; }
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
