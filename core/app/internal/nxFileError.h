// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INTERNAL_NXFILEERROR_H
#define CORE_APP_INTERNAL_NXFILEERROR_H

#include "core/enum/nxErrorEnum.h"

/// The code for an error number of the system. @param other the code for numbers that have none of their own.
/// @param systemError receives the number, unless it is null.
nxErrorEnum nxGetFileError(int error, const nxErrorEnum& other, int* systemError);

#endif
