#ifndef CORE_LOG_INLINE_NXLOGMESSAGE_H
#define CORE_LOG_INLINE_NXLOGMESSAGE_H

#include <cstddef>

#include "core/nxExport.h"

/// The bytes of one log record: the source file's name, then the values. Held in the object itself while they are few,
/// in a block of its own when they are many, or lent by the log's queue. Internal to the log.
///
/// Errors: without memory the bytes end early. Threads: like a string.
class NX_CORE_API nxLogMessage
{
public:
    /// @param file is copied, at most MaximumFileSize bytes of it; null is as empty.
    explicit nxLogMessage(const char* file) noexcept;
    /// Lends bytes that live longer than the object and are not changed: values alone, the file stands elsewhere.
    nxLogMessage(const char* file, const char* begin, const char* end) noexcept;
    nxLogMessage(const nxLogMessage& other) noexcept;             ///< Owns a copy of the bytes, lent or not.
    nxLogMessage& operator=(const nxLogMessage& other) noexcept;  ///< A copy of the bytes, lent or not.
    ~nxLogMessage();

    /// Room for @p bytes more; null when there is no memory or the message is as long as one may be.
    [[gnu::always_inline]] char* Take(std::size_t bytes) noexcept
    {
        if (static_cast<std::size_t>(_end - _cursor) < bytes && !_Grow(bytes)) [[unlikely]]
            return nullptr;
        char* const at = _cursor;
        _cursor += bytes;
        return at;
    }

    const char* GetFile() const { return _file; }      ///< Terminated; moves when the message grows.
    const char* GetValues() const { return _values; }  ///< The first byte of the values.
    const char* GetEnd() const { return _cursor; }     ///< The end of the values.
    /// Keeps the file, and of the values destination user and source application. Lent bytes are let go altogether.
    void ClearMessage() noexcept;

    /// The most bytes that the values of one record may take, beside the file's name: more than a message that is cut can use.
    static constexpr std::size_t MaximumSize = (std::size_t{1} << 21) + 4096;
    static constexpr std::size_t MaximumFileSize = 16'384;  ///< Of the file's name.

private:
    void _Start(const char* file) noexcept;
    void _AppendValues(const nxLogMessage& other) noexcept;
    bool _Grow(std::size_t bytes) noexcept;
    bool _Enlarge(std::size_t bytes) noexcept;
    void _Cut() noexcept;

    // File, NUL, values, one after the other in _own or in _block; or lent, in two places.
    const char* _file;
    const char* _values;
    char* _cursor;
    char* _end;  // leaves one byte for the mark of a cut
    char* _block = nullptr;
    bool _isCut = false;
    char _own[239];
};

#endif
