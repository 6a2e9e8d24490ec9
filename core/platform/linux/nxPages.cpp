// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxPages.h"

#include <sys/mman.h>

void* nxSystemPages::Take(std::size_t size) noexcept
{
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED ? memory : nullptr;
}

void nxSystemPages::GiveBack(void* memory, std::size_t size) noexcept { munmap(memory, size); }
