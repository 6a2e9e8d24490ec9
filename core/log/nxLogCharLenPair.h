#ifndef CORE_LOG_NXLOGCHARLENPAIR_H
#define CORE_LOG_NXLOGCHARLENPAIR_H

#include <cstddef>

/// Text that is not terminated, to be streamed into a log record: its first byte and its length.
/// @code
/// NX_LOG(NX_LOG_LEVEL_INFO) << "received " << nxLogCharLenPair(packet, 16);
/// @endcode
class nxLogCharLenPair
{
public:
    /// @param text may be null when @p length is 0; otherwise @p length bytes, which are read while streaming.
    constexpr nxLogCharLenPair(const char* text, std::size_t length)
        : _text(text), _length(text == nullptr ? 0 : length)
    {
    }

    constexpr const char* GetText() const { return _text; }
    constexpr std::size_t GetLength() const { return _length; }

private:
    const char* _text;
    std::size_t _length;
};

#endif
