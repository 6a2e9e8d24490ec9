// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGSETUP_H
#define CORE_LOG_NXLOGSETUP_H

#include "core/nxExport.h"
#include "core/text/nxValueWrapper.h"

/// Sets up the log as the environment asks: the level and the other settings of the log (QRX_LOG_LEVEL and others), the
/// levels by source (NX_LOG_LEVELS, NX_LOG_LEVEL_FILE), the log file (QRX_LOG_DIRECTORY and the keys that go with it), the
/// console (QRX_LOG_TO_CONSOLE), how their lines look (nxLogFormSettings), and journal and syslog (nxLogDeviceSettings). It
/// is for programs that want no more than that; call it early in main. Calling it again does no harm. Texts of enumerations
/// and masks that could not be registered are reported at the error level (nxRefusedTexts).
/// @param maximumFileSize bytes beyond which a new log file is begun; null means no limit.
/// @return whether the log file is open. If it is not, the reason is on the error stream and the program goes on.
NX_CORE_API bool nxLogSetUp(const nxValueWrapper<unsigned long long>& maximumFileSize = {});

#endif
