// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGMESSAGE_H
#define CORE_LOG_INLINE_NXLOGMESSAGE_H

#include <cstddef>

#include "core/nxExport.h"

/// The bytes of one log record: the source file's name, then the values. They are in the object itself while they are
/// few, in a block of its own when they are many, or lent by the log's queue.
///
/// Invariant: the file's name is terminated, and there is always room for the mark of a cut. A message that was cut
/// takes no more values.
///
/// Errors: without memory the values end early. Threads: like a string.
class NX_CORE_API nxLogMessage
{
public:
    /// @param file is copied, at most MaximumFileSize bytes of it; null counts as empty.
    explicit nxLogMessage(const char* file) noexcept;
    /// Borrows bytes that live longer than the object and are not changed: @p file, and the values from @p begin to @p
    /// end.
    nxLogMessage(const char* file, const char* begin, const char* end) noexcept;
    nxLogMessage(const nxLogMessage& other) noexcept;             ///< Owns a copy of the bytes, borrowed or not.
    nxLogMessage& operator=(const nxLogMessage& other) noexcept;  ///< Owns a copy of the bytes, borrowed or not.
    ~nxLogMessage();

    /// @return room for @p bytes more; null without memory, or when the message would become too long.
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
    /// Keeps the file, and of the values destination user and source application. Of borrowed values none is kept.
    void ClearMessage() noexcept;

    /// The most bytes that the values of one record may take: more than a message that is cut for its length can use.
    static constexpr std::size_t MaximumSize = (std::size_t{1} << 21) + 4096;
    static constexpr std::size_t MaximumFileSize = 16'384;  ///< Bytes of the file's name that are kept.

private:
    void _Start(const char* file) noexcept;
    void _AppendValues(const nxLogMessage& other) noexcept;
    bool _Grow(std::size_t bytes) noexcept;
    bool _Enlarge(std::size_t bytes) noexcept;
    void _Cut() noexcept;

    // File, NUL and values one after the other in _own or in _block; or borrowed, in two places.
    const char* _file;
    const char* _values;
    char* _cursor;
    char* _end;  // leaves one byte for the mark of a cut
    char* _block = nullptr;
    bool _isCut = false;
    char _own[239];
};

#endif
