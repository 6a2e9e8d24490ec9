// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXBYTEARRAY_H
#define CORE_TEXT_NXBYTEARRAY_H

#include <cstddef>
#include <utility>
#include <vector>

#include "core/nxExport.h"

/// A growing sequence of raw bytes, such as a message or a key.
///
/// - Units: bytes, 0 to 255. There is no null; an empty array is just empty.
/// - Threads: like a std::vector. Ownership: it owns its bytes.
/// @code
/// nxByteArray bytes;
/// bytes.Append(0xBE);
/// bytes.Append(header, sizeof header);
/// nxAlgorithm::AppendAsHex(bytes, line);
/// @endcode
class NX_CORE_API nxByteArray
{
public:
    nxByteArray() = default;  ///< Empty.
    /// Takes the bytes over.
    explicit nxByteArray(std::vector<unsigned char> bytes) : _bytes(std::move(bytes)) {}
    /// A copy of @p size bytes.
    nxByteArray(const unsigned char* data, std::size_t size) : _bytes(data, data + size) {}

    const unsigned char* GetData() const { return _bytes.data(); }  ///< Valid until the array is changed.
    std::size_t GetSize() const { return _bytes.size(); }           ///< In bytes.
    bool IsEmpty() const { return _bytes.empty(); }                 ///< No byte at all.
    void Clear() { _bytes.clear(); }                                ///< Removes all bytes and keeps the memory.
    void Append(unsigned char byte) { _bytes.push_back(byte); }     ///< Appends one byte.
    /// Appends a copy of @p size bytes, which must not be the array's own.
    void Append(const unsigned char* data, std::size_t size);

    auto begin() const { return _bytes.begin(); }  ///< The first byte; valid until the array is changed.
    auto end() const { return _bytes.end(); }      ///< Past the last byte.

    /// Byte by byte.
    friend bool operator==(const nxByteArray&, const nxByteArray&) = default;

private:
    std::vector<unsigned char> _bytes;
};

#endif
