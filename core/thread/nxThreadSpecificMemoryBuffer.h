// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREADSPECIFICMEMORYBUFFER_H
#define CORE_THREAD_NXTHREADSPECIFICMEMORYBUFFER_H

#include "core/nxExport.h"

/// A block of raw bytes that grows and belongs to one thread, for formatting work.
///
/// Every allocation and every growth is written to the log at the information level.
/// - Units: bytes. The buffer grows by the size given at construction; a size of 0 never grows.
/// - Errors: none are reported. When memory runs out, GetData() is null, the old contents are lost, and the capacity is
///   the size that was asked for: test the pointer after construction and after each growth. Capacities are 32 bits
///   wide and wrap.
/// - Threads: one thread only; no lock.
/// - Ownership: owns its block; not copyable.
/// @code
/// nxThreadSpecificMemoryBuffer buffer(256);
/// while (buffer.GetData() != nullptr && buffer.GetCapacity() - buffer.GetUsed() < text.size())
///     buffer.GrowBuffer();
/// if (buffer.GetData() != nullptr)
/// {
///     std::memcpy(buffer.GetData() + buffer.GetUsed(), text.data(), text.size());
///     buffer.SetUsed(buffer.GetUsed() + static_cast<unsigned>(text.size()));
/// }
/// @endcode
class NX_CORE_API nxThreadSpecificMemoryBuffer
{
public:
    /// Allocates @p size bytes. Each GrowBuffer() adds the same number.
    explicit nxThreadSpecificMemoryBuffer(const unsigned& size);
    ~nxThreadSpecificMemoryBuffer();

    nxThreadSpecificMemoryBuffer(const nxThreadSpecificMemoryBuffer&) = delete;
    nxThreadSpecificMemoryBuffer& operator=(const nxThreadSpecificMemoryBuffer&) = delete;

    /// Adds the size given at construction. The contents stay; the address may change.
    void GrowBuffer();

    /// Makes the capacity @p size, larger or smaller than it was. The contents stay as far as they fit, the address may
    /// change, and the fill level stays as it is. A size of 0 frees the block.
    void GrowBufferToSize(const unsigned& size);

    /// The block; null when it could not be allocated. Valid until the buffer grows.
    char* GetData() { return _data; }
    const char* GetData() const { return _data; }  ///< The block, for reading.

    /// The bytes asked for.
    unsigned GetCapacity() const { return _capacity; }

    /// The fill level, 0 at first; the buffer itself never looks at it.
    unsigned GetUsed() const { return _used; }
    void SetUsed(unsigned used) { _used = used; }  ///< Stores the fill level as it is; it is not checked.

private:
    nxThreadSpecificMemoryBuffer();

    void _Initialise();
    void _Reallocate(unsigned capacity);

    char* _data;
    unsigned _capacity;
    unsigned _used;
    unsigned _increment;
};

#endif
