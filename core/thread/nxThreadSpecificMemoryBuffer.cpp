// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxThreadSpecificMemoryBuffer.h"

#include <cstdlib>

#include "core/thread/internal/nxThreadReport.h"

nxThreadSpecificMemoryBuffer::nxThreadSpecificMemoryBuffer(const unsigned& size) : _increment(size) { _Initialise(); }

nxThreadSpecificMemoryBuffer::~nxThreadSpecificMemoryBuffer() { std::free(_data); }

void nxThreadSpecificMemoryBuffer::GrowBuffer()
{
    const unsigned before = _capacity;
    _Reallocate(_capacity + _increment);
    nxThreadReport::BufferGrownByItsIncrement(before, _capacity);
}

void nxThreadSpecificMemoryBuffer::GrowBufferToSize(const unsigned& size)
{
    const unsigned before = _capacity;
    _Reallocate(size);
    nxThreadReport::BufferGrownToSize(before, _capacity);
}

void nxThreadSpecificMemoryBuffer::_Initialise()
{
    _data = static_cast<char*>(std::malloc(_increment));
    _capacity = _increment;
    _used = 0;
    nxThreadReport::BufferAllocated(_capacity, _data);
}

void nxThreadSpecificMemoryBuffer::_Reallocate(unsigned capacity)
{
    char* const block = static_cast<char*>(std::realloc(_data, capacity));
    // On failure realloc keeps the old block. The interface says that it is lost, so it is freed here. A size of 0 has
    // freed it already.
    if (block == nullptr && capacity != 0)
        std::free(_data);
    _data = block;
    _capacity = capacity;
}
