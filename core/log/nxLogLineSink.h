// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGLINESINK_H
#define CORE_LOG_NXLOGLINESINK_H

#include <cstddef>

#include "core/enum/nxEnumValue.h"
#include "core/nxExport.h"

/// What a line of the log carries and how it ends.
struct nxLogLineStyle
{
    /// The parts of a line.
    enum Form
    {
        Full,          ///< "[INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]"
        LevelAndText,  ///< "[INF] text"
        TimeAndText    ///< "[05Mar24 09:07:03.123.456] text"
    };

    Form form = Full;             ///< Which parts.
    bool carriageReturn = false;  ///< Whether lines end in CR LF rather than in LF alone.

    /// Equal styles make equal lines.
    friend bool operator==(const nxLogLineStyle&, const nxLogLineStyle&) = default;
};

/// Finished lines on their way to one device. Each is ended, and none holds a control character but the tab: see
/// nxPrintableText.
struct nxLogLineBatch
{
    const char* text;  ///< The lines, one after the other; not terminated.
    std::size_t size;  ///< Their bytes, at most a mebibyte and one line.
    unsigned lines;    ///< Their number, at least one.
    /// The gravest level among them. From NX_LOG_LEVEL_WARNING on they must not wait in a buffer.
    nxEnumValue worstLevel;
    long long seconds;  ///< The time of the first line, as nxTimeStamp::GetSeconds(). All lines are of one local day.
};

/// The part of a device that takes finished lines in batches, instead of records one by one.
///
/// All operations come from one thread at a time, never from two. None may throw.
class NX_CORE_API nxLogLineSink
{
public:
    /// The lines that this sink wants. It is asked before every batch, so the answer may change.
    virtual nxLogLineStyle GetLineStyle() const = 0;

    /// Writes the lines of @p batch. A sink that cannot write them loses them, and counts them.
    virtual void WriteLines(const nxLogLineBatch& batch) = 0;

    /// Called about once a second, whether there are lines or not: a sink that could not write may try again.
    virtual void Maintain() {}

    /// Called just before the process forks: takes the locks that no other thread may hold in the child. Keep it short.
    virtual void BeforeFork() {}
    /// Called in the parent after the fork: gives the locks back.
    virtual void AfterForkInParent() {}
    /// Called in the child, by its only thread: forgets, without writing, what the parent had buffered, and constructs the
    /// locks again in place.
    virtual void AfterForkInChild() {}

protected:
    ~nxLogLineSink() = default;
};

#endif
