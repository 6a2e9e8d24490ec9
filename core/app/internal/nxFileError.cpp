// SPDX-License-Identifier: Apache-2.0
#include "core/app/internal/nxFileError.h"

#include <cerrno>

nxErrorEnum nxGetFileError(int error, const nxErrorEnum& other, int* systemError)
{
    if (systemError != nullptr)
        *systemError = error;
    switch (error)
    {
        case 0:
            return nxErrorEnum();
        case ENOENT:
            return nxErrorEnum(NX_ERR_NOT_FOUND);
        case EEXIST:
        case ENOTEMPTY:
            return nxErrorEnum(NX_ERR_DUPLICATE_MATCH);
        case EINVAL:
        case EISDIR:
        case ENOTDIR:
        case ELOOP:
        case ENXIO:  // a socket
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        default:
            return other;
    }
}
