#ifndef CORE_NXCORE_H
#define CORE_NXCORE_H

/// @file
/// Every public header of the library.

#include "core/app/nxConfigurationKeys.h"
#include "core/enum/nxAPIConnectionTypeEnum.h"
#include "core/enum/nxBoolEnum.h"
#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/enum/nxEnum.h"
#include "core/enum/nxEnumValue.h"
#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxGenericEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/enum/nxTypedEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/enum/nxWorkpaceGroupTypeEnum.h"
#include "core/nxExport.h"
#include "core/nxVersion.h"
#include "core/platform/nxClock.h"
#include "core/text/nxInitalizers.h"
#include "core/time/nxElapsedTimeCounter.h"
#include "core/time/nxTimeStamp.h"

#endif
