#include "core/thread/nxThreadSpecificMemoryBuffer.h"

#include <cstdlib>

nxThreadSpecificMemoryBuffer::nxThreadSpecificMemoryBuffer(const unsigned& size) : _increment(size) { _Initialise(); }

nxThreadSpecificMemoryBuffer::~nxThreadSpecificMemoryBuffer() { std::free(_data); }

void nxThreadSpecificMemoryBuffer::GrowBuffer() { _Reallocate(_capacity + _increment); }

void nxThreadSpecificMemoryBuffer::GrowBufferToSize(const unsigned& size) { _Reallocate(size); }

void nxThreadSpecificMemoryBuffer::_Initialise()
{
    _data = static_cast<char*>(std::malloc(_increment));
    _capacity = _increment;
    _used = 0;
}

void nxThreadSpecificMemoryBuffer::_Reallocate(unsigned capacity)
{
    char* const old = _data;
    _capacity = capacity;
    _data = static_cast<char*>(std::realloc(old, capacity));
    // A failure leaves the old block to us, and users are told that it is lost; a size of 0 has freed it.
    if (_data == nullptr && capacity != 0)
        std::free(old);
}
