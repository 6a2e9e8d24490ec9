// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGTEXTBYTES_H
#define CORE_LOG_INTERNAL_NXLOGTEXTBYTES_H

#include <cstddef>
#include <cstring>
#include <string_view>

/// A growing piece of memory in which text is written at a cursor.
///
/// Invariant: the text ends at the cursor. What Ensure() has made room for may be written after it before the cursor moves.
///
/// Errors: Ensure() fails without memory, and the text stays. Threads: none.
class nxLogTextBytes
{
public:
    nxLogTextBytes() = default;
    ~nxLogTextBytes();
    nxLogTextBytes(const nxLogTextBytes&) = delete;
    nxLogTextBytes& operator=(const nxLogTextBytes&) = delete;

    const char* GetText() const { return _begin; }
    std::size_t GetSize() const { return static_cast<std::size_t>(_cursor - _begin); }
    std::string_view Get() const { return {_begin, GetSize()}; }

    /// Keeps the memory.
    void Clear() { _cursor = _begin; }
    /// Gives back the memory beyond @p bytes if the text is empty.
    void ShrinkTo(std::size_t bytes) noexcept;

    /// Makes room for at least @p bytes bytes after the cursor. @return false without memory.
    [[gnu::always_inline]] bool Ensure(std::size_t bytes) noexcept
    {
        return static_cast<std::size_t>(_end - _cursor) >= bytes || _Grow(bytes);
    }
    char* GetCursor() const { return _cursor; }
    void SetCursor(char* cursor) { _cursor = cursor; }
    /// Takes back what was written after the first @p size bytes.
    void CutTo(std::size_t size) { _cursor = _begin + size; }

    /// Writes @p text, for which there is room.
    void Put(std::string_view text)
    {
        std::memcpy(_cursor, text.data(), text.size());
        _cursor += text.size();
    }

private:
    bool _Grow(std::size_t bytes) noexcept;

    char* _begin = nullptr;
    char* _cursor = nullptr;
    char* _end = nullptr;
};

#endif
