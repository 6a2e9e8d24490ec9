// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_INLINE_NXNATIVE_H
#define CORE_PLATFORM_INLINE_NXNATIVE_H

/// @file
/// The primitives under the locks and threads of core/thread. This is the only place that chooses between systems: each
/// has an nxNative.h of its own.

#if defined(__linux__)
    #include "core/platform/linux/inline/nxNative.h"
#else
    #error "nxcore knows no primitives of this system"
#endif

#endif
