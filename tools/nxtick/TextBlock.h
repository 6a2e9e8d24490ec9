// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TEXTBLOCK_H
#define NXTICK_TEXTBLOCK_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace nxtick
{
/// Text that grows by pieces which are written in place. Its memory is kept when it is cleared.
class TextBlock
{
public:
    std::string_view GetText() const { return {_bytes.get(), _size}; }
    std::size_t GetSize() const { return _size; }
    void Clear() { _size = 0; }

    /// Makes room after the text. @return where to write.
    char* Reserve(std::size_t size)
    {
        if (_capacity - _size < size)
            _Grow(size);
        return _bytes.get() + _size;
    }
    /// The text ends at @p end now, which is inside the room that was reserved last.
    void SetEnd(const char* end) { _size = static_cast<std::size_t>(end - _bytes.get()); }

    void Append(std::string_view text)
    {
        char* const at = Reserve(text.size());
        std::copy(text.begin(), text.end(), at);
        _size += text.size();
    }
    void Append(std::size_t count, char byte)
    {
        std::fill_n(Reserve(count), count, byte);
        _size += count;
    }

private:
    void _Grow(std::size_t size)
    {
        const std::size_t capacity = std::max(2 * _capacity, _size + size);
        std::unique_ptr<char[]> bytes(new char[capacity]);
        std::copy_n(_bytes.get(), _size, bytes.get());
        _bytes = std::move(bytes);
        _capacity = capacity;
    }

    std::unique_ptr<char[]> _bytes;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};
}  // namespace nxtick

#endif
