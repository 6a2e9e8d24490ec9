// SPDX-License-Identifier: Apache-2.0
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
    /// @param text its first byte, read while streaming; null counts as empty. @param length in bytes.
    constexpr nxLogCharLenPair(const char* text, std::size_t length)
        : _text(text), _length(text == nullptr ? 0 : length)
    {
    }

    constexpr const char* GetText() const { return _text; }      ///< Not terminated; null when there is none.
    constexpr std::size_t GetLength() const { return _length; }  ///< In bytes.

private:
    const char* _text;
    std::size_t _length;
};

#endif
