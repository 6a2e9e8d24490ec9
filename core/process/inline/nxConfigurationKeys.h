// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PROCESS_INLINE_NXCONFIGURATIONKEYS_H
#define CORE_PROCESS_INLINE_NXCONFIGURATIONKEYS_H

/// @file
/// The constants of core/app/nxConfigurationKeys.h, which applications include. They are below it because the log reads
/// settings too.

/// @cond
#define NX_CONFIGURATION_KEY(key) inline constexpr char key[] = #key;
#include "core/process/inline/nxConfigurationKeys.inc"
#undef NX_CONFIGURATION_KEY
/// @endcond

#endif
