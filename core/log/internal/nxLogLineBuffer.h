#ifndef CORE_LOG_INTERNAL_NXLOGLINEBUFFER_H
#define CORE_LOG_INTERNAL_NXLOGLINEBUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/log/nxLogLineSink.h"

class nxLogTimeText;
struct nxLogRecord;
struct nxLogSource;

/// What full lines tell about the reporting thread: "[7]", or "[7/1]" with the processor. Nothing without the index.
struct nxLogLineThread
{
    bool index;
    bool processor;
};

/// A growing piece of memory in which records become text: the one place that knows how each line looks. What each
/// short value looks like nxLogPlainMessage knows.
///
/// Errors: what there is no memory for is refused, and an incomplete line taken back. Threads: none.
class nxLogLineBuffer
{
public:
    nxLogLineBuffer() = default;
    ~nxLogLineBuffer();
    nxLogLineBuffer(const nxLogLineBuffer&) = delete;
    nxLogLineBuffer& operator=(const nxLogLineBuffer&) = delete;

    const char* GetText() const { return _begin; }
    std::size_t GetSize() const { return static_cast<std::size_t>(_cursor - _begin); }

    /// Keeps the memory.
    void Clear()
    {
        _cursor = _begin;
        _prefix.key = Prefix::None;
    }
    /// Makes room for @p bytes, so that appending so many takes no further memory.
    bool Reserve(std::size_t bytes) noexcept { return _Ensure(bytes); }
    /// Gives memory back that a giant line has left behind.
    void ShrinkTo(std::size_t bytes) noexcept;

    /// Appends one ended line. @param time the record's.
    /// @return false, with nothing appended, when there is no memory for it.
    bool AppendLine(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                    nxLogLineThread thread) noexcept;

    /// Appends the message of a record alone. @param escape whether control bytes but tabs become \xNN.
    bool AppendMessage(const char* values, const char* end, bool escape) noexcept;

    /// Appends how a full line ends: " [file:line]".
    bool AppendSuffix(const char* file, unsigned line) noexcept;

private:
    // How the last line began. Lines of the same thread and level differ only in the time.
    struct Prefix
    {
        static constexpr std::uint64_t None = ~std::uint64_t{0};
        static constexpr std::size_t Longest = 72;

        std::uint64_t key = None;
        std::size_t size = 0;
        std::size_t timeAt = 0;  // where the time goes; behind the prefix when it has none
        char text[Longest] = {};
    };

    // At least so many bytes behind the cursor.
    bool _Ensure(std::size_t bytes) noexcept
    {
        return static_cast<std::size_t>(_end - _cursor) >= bytes || _Grow(bytes);
    }
    bool _Grow(std::size_t bytes) noexcept;

    bool _AppendText(std::string_view text, bool escape) noexcept;
    bool _AppendEscaped(std::string_view text) noexcept;
    bool _AppendCarefully(const char* values, const char* end, bool escape) noexcept;
    bool _AppendDouble(double value) noexcept;
    bool _AppendSuffix(const nxLogSource& source) noexcept;
    bool _AppendParts(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                      nxLogLineThread thread) noexcept;
    void _PutPrefix(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                    nxLogLineThread thread) noexcept;
    void _MakePrefix(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                     nxLogLineThread thread) noexcept;
    void _PutLevel(unsigned level) noexcept;
    void _Put(std::string_view text)
    {
        std::memcpy(_cursor, text.data(), text.size());
        _cursor += text.size();
    }

    char* _begin = nullptr;
    char* _cursor = nullptr;
    char* _end = nullptr;
    Prefix _prefix;
};

#endif
