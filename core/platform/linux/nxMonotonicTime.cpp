// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxMonotonicTime.h"

// The sanitizer's own entry, which only its run-time defines. Asked for when the program runs, because the library may be
// built without the sanitizer and the program with it.
extern "C" __attribute__((weak)) void __tsan_init();

bool nxMonotonicTime::IsWatched() { return &__tsan_init != nullptr; }
