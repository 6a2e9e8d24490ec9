// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXCONFIGURATIONKEYS_H
#define CORE_APP_NXCONFIGURATIONKEYS_H

/// @file
/// The names of the environment settings that configure the applications.
///
/// Each key is a constant whose identifier and text are the same word, so a mistyped key does not compile:
/// @code
/// const nxDecimal rate = nxCmdLineArgs::GetInstance().GetEnvValueAsDecimal(QRX_PRICE_THROTTLER_RATE);
/// @endcode
/// The library supplies the names. The application that reads a setting defines its meaning and its default.
/// The constants need no run-time initialisation, so initialisers of other globals may use them.

#include <cstddef>

#include "core/process/inline/nxConfigurationKeys.h"

/// All keys in the order of their groups, for example to find the key closest to a mistyped variable.
inline constexpr const char* nxConfigurationKeys[] = {
/// @cond
#define NX_CONFIGURATION_KEY(key) key,
#include "core/process/inline/nxConfigurationKeys.inc"
#undef NX_CONFIGURATION_KEY
    /// @endcond
};

/// The number of keys.
inline constexpr std::size_t nxConfigurationKeyCount = sizeof(nxConfigurationKeys) / sizeof(nxConfigurationKeys[0]);

#endif
