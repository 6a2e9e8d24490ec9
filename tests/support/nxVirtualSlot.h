#ifndef TESTS_SUPPORT_NXVIRTUALSLOT_H
#define TESTS_SUPPORT_NXVIRTUALSLOT_H

#include <bit>
#include <cstddef>
#include <cstdint>

/// The place of a virtual operation in its class's table, where a destructor takes two. For x86-64, whose pointers to
/// virtual members hold the offset of that place plus one.
template <class Member>
std::size_t nxVirtualSlot(Member member)
{
    struct Pointer
    {
        std::uintptr_t function;
        std::ptrdiff_t adjustment;
    };
    return (std::bit_cast<Pointer>(member).function - 1) / sizeof(void*);
}

#endif
