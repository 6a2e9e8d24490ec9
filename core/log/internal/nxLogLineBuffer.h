// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLINEBUFFER_H
#define CORE_LOG_INTERNAL_NXLOGLINEBUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/log/inline/nxLogSource.h"
#include "core/log/internal/nxLogJsonLine.h"
#include "core/log/internal/nxLogLineThread.h"
#include "core/log/internal/nxLogOtherTime.h"
#include "core/log/internal/nxLogQuickText.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogTextBytes.h"
#include "core/log/internal/nxLogTimeText.h"
#include "core/log/nxLogLineSink.h"

/// A growing piece of memory in which records become text: the one place that knows how each line looks. nxLogQuickText
/// knows how each short value looks, nxLogJsonLine how JSON does.
///
/// Invariant: the text is whole lines, one a record, and none holds a control character but the tab and those of colours.
///
/// Errors: without memory a line is refused, and an incomplete one is taken back. Threads: none.
class nxLogLineBuffer
{
public:
    const char* GetText() const { return _bytes.GetText(); }
    std::size_t GetSize() const { return _bytes.GetSize(); }

    /// Keeps the memory.
    void Clear() { _bytes.Clear(); }
    /// Makes room for @p bytes, so that appending them takes no further memory.
    bool Reserve(std::size_t bytes) noexcept { return _bytes.Ensure(bytes); }
    /// Gives back the memory beyond @p bytes that a giant line has taken.
    void ShrinkTo(std::size_t bytes) noexcept { _bytes.ShrinkTo(bytes); }

    /// Sets how the lines that follow look.
    void SetStyle(const nxLogLineStyle& style, nxLogLineThread thread) noexcept;

    /// Appends one ended line. Inlined into the loop over the records. @param time the record's.
    /// @return false, with nothing appended, when there is no memory for it.
    [[gnu::always_inline]] bool AppendLine(const nxLogRecord& record, const nxLogTimeText& time) noexcept
    {
        const auto size = static_cast<std::size_t>(record.end - record.values);
        // Nearly every line: the room for all of it is tested once, and the place in it stays in a register.
        if (size < _quickSizes && record.source != nullptr && record.source->suffixSize <= nxLogSource::SuffixRoom &&
            !time.IsEmpty() && _bytes.Ensure(nxLogQuickText::GetRoom(size) + _longestFrame)) [[likely]]
        {
            char* const begin = _PutPrefix(_bytes.GetCursor(), record, time);
            if (char* const end = nxLogQuickText::Write(begin, record.values, record.end, true)) [[likely]]
            {
                _bytes.SetCursor(_PutEnd(end, *record.source));
                return true;
            }
        }
        return _AppendOtherLine(record, time);
    }

    /// Appends the message of a record alone. @param escape whether it is written as nxLogEscape says.
    bool AppendMessage(const char* values, const char* end, bool escape) noexcept;

private:
    // How the last line began. Lines of one thread and level begin alike but for the time.
    struct Prefix
    {
        static constexpr std::size_t Longest = 72;

        std::uint64_t key = nxLogLineThread::NoKey;
        std::size_t size = 0;
        std::size_t timeAt = 0;  // where the time goes; after the prefix when it has none
        char text[Longest] = {};
    };

    bool _AppendSuffix(const nxLogRecord& record) noexcept;
    bool _AppendOtherLine(const nxLogRecord& record, const nxLogTimeText& local) noexcept;
    bool _AppendParts(const nxLogRecord& record, const nxLogTimeText& local) noexcept;
    std::string_view _GetColour(unsigned level) const noexcept;

    static constexpr std::size_t _allQuickSizes = nxLogQuickText::LargestRecord + 1;

    // Room for all of a line but its message. Fixed sizes are copied, which costs less than the right ones.
    static constexpr std::size_t _longestFrame =
        Prefix::Longest + nxLogTimeText::Size + nxLogSource::SuffixRoom + sizeof "\r\n";

    char* _PutPrefix(char* out, const nxLogRecord& record, const nxLogTimeText& time) noexcept
    {
        const std::uint64_t key = _thread.GetKey(record);
        if (key != _prefix.key) [[unlikely]]
            _MakePrefix(key, record, time);
        char* const timeAt = out + _prefix.timeAt;
        char* const end = out + _prefix.size;
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): without memory there is room for nothing
        std::memcpy(out, _prefix.text, sizeof _prefix.text);
        std::memcpy(timeAt, time.GetBytes(), nxLogTimeText::Size);
        return end;
    }
    void _MakePrefix(std::uint64_t key, const nxLogRecord& record, const nxLogTimeText& time) noexcept;

    char* _PutEnd(char* out, const nxLogSource& source) const
    {
        if (_style.form == nxLogLineStyle::Full)
        {
            const std::size_t size = source.suffixSize;
            std::memcpy(out, source.suffix, nxLogSource::SuffixRoom);
            out += size;
        }
        return _PutLineEnd(out);
    }
    char* _PutLineEnd(char* out) const
    {
        if (_style.carriageReturn)
            *out++ = '\r';
        *out++ = '\n';
        return out;
    }

    char* _PutPrefixSlowly(char* out, const nxLogRecord& record, std::string_view time, char*& timeAt) const noexcept;

    nxLogTextBytes _bytes;
    nxLogLineStyle _style;
    nxLogLineThread _thread{};
    std::size_t _quickSizes = _allQuickSizes;  // records with fewer bytes of values may be written quickly
    Prefix _prefix;
    bool _hasOtherTime = false;
    nxLogOtherTime _otherTime;
    nxLogJsonLine _json;
};

#endif
