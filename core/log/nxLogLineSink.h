// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGLINESINK_H
#define CORE_LOG_NXLOGLINESINK_H

#include <cstddef>

#include "core/enum/nxEnumValue.h"
#include "core/nxExport.h"

/// What a line of the log carries and how it ends.
///
/// Time and colour are kept in bits of @p form above the values that are named here, so that a style is as large as ever, and
/// a style of which only @p form and @p carriageReturn are set has the local time and no colour.
/// @code
/// return nxLogLineStyle{nxLogLineStyle::Json, false}.With(nxLogLineStyle::Time::ISO);
/// @endcode
struct nxLogLineStyle
{
    /// The parts of a line.
    enum Form
    {
        Full,          ///< "[INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]"
        LevelAndText,  ///< "[INF] text"
        TimeAndText,   ///< "[05Mar24 09:07:03.123.456] text"

        /// A JSON object (RFC 8259) in UTF-8: `{"time":"2024-03-05T09:07:03.123456Z","level":"INF","thread":7,"processor":1,
        /// "source":"core/trunk/nxMutex:107","message":"text","price":101.25}`.
        ///
        /// - Thread and processor are there if lines show them: see nxLogManager::SetLogThreadIndex().
        /// - "message" has the texts of all values that are no fields. The fields follow as members of their own: see nxField.
        ///   A field that is called as another member before it, or as one of those shown here, or "cut", becomes `name#2`,
        ///   the next one `name#3`.
        /// - "cut" is true, and the last member, in a record of which a part was left out because it was too long.
        /// - A byte that belongs to no UTF-8 character becomes U+FFFD. Control characters, and what else nxPrintableText
        ///   hides, are escaped as `\uNNNN`.
        /// - Integers have all their digits, also beyond 2^53; decimals their own digits; doubles the shortest that read back
        ///   as the same double.
        Json,

        LargestForm = 0xFFFF  ///< No form: bits for the functions below.
    };

    /// How lines show the time. In JSON it is always of the form of ISO 8601: local time with ISO, else UTC.
    enum class Time
    {
        Local,    ///< "05Mar24 09:07:03.123.456", local time.
        UTC,      ///< "05Mar24 09:07:03.123.456", UTC.
        ISO,      ///< "2024-03-05T10:07:03.123456+01:00", local time and its offset from UTC.
        ISOInUTC  ///< "2024-03-05T09:07:03.123456Z"
    };

    Form form = Full;             ///< Which parts.
    bool carriageReturn = false;  ///< Whether lines end in CR LF rather than in LF alone.

    /// @return the same style with the time in another form.
    [[nodiscard]] constexpr nxLogLineStyle With(Time time) const
    {
        return {static_cast<Form>((form & ~_timeBits) | static_cast<int>(time) * _timeUnit), carriageReturn};
    }
    /// @return the same style with or without colour. What a line begins with is then coloured by the level, from a warning
    ///         on, with the escape sequences of ECMA-48, as terminals know them. JSON has no colour.
    [[nodiscard]] constexpr nxLogLineStyle WithColour(bool isColoured) const
    {
        return {static_cast<Form>((form & ~_colourBit) | (isColoured ? _colourBit : 0)), carriageReturn};
    }

    /// The named form.
    constexpr Form GetParts() const { return static_cast<Form>(form & (_timeUnit - 1)); }
    /// The form of the time.
    constexpr Time GetTime() const { return static_cast<Time>((form & _timeBits) / _timeUnit); }
    /// Whether lines are coloured by their levels.
    constexpr bool IsColoured() const { return (form & _colourBit) != 0; }

    /// Equal styles make equal lines.
    friend bool operator==(const nxLogLineStyle&, const nxLogLineStyle&) = default;

private:
    static constexpr int _timeUnit = 0x100;
    static constexpr int _timeBits = 3 * _timeUnit;
    static constexpr int _colourBit = 4 * _timeUnit;
};
static_assert(sizeof(nxLogLineStyle) == 8);

/// Finished lines on their way to one device. Each is ended, and none holds a control character but the tab, except for
/// the colours that the style asks for: see nxPrintableText.
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
