// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGRECORD_H
#define CORE_LOG_INTERNAL_NXLOGRECORD_H

#include "core/log/inline/nxLogSource.h"
#include "core/platform/inline/nxClock.h"

/// A view of one record, wherever its bytes are: what devices are given and lines are made of.
///
/// Invariant: the place is either kept by the log, for the life of the process, or the record's own; file, values and
/// end point to bytes that somebody else owns.
struct nxLogRecord
{
    unsigned level;
    nxClockTime time;
    unsigned threadIndex;
    unsigned processor;
    const nxLogSource* source;      ///< The kept place; null for a record with a place of its own:
    const char* ownFile = nullptr;  ///< the file, terminated,
    unsigned ownLine = 0;           ///< and the line in it.
    const char* values;
    const char* end;

    const char* GetFile() const { return source != nullptr ? source->file : ownFile; }
    unsigned GetLine() const { return source != nullptr ? source->line : ownLine; }
};

#endif
