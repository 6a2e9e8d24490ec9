// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "core/nxCore.h"
#include "core/testing/nxSteppedClock.h"

int main()
{
    nxErrorEnum error;
    if (!error.SetFromString("NX_ERR_NOT_FOUND"))
        return 1;
    NX_LOG(NX_LOG_LEVEL_DEBUG) << "found " << error;
    const nxSteppedClock clock(nxTimeStamp(1, 0));
    if (nxTimeStamp() != nxTimeStamp(1, 0))
        return 1;
    std::cout << NX_CORE_VERSION << ' ' << error.GetLongDescription() << '\n';
    return 0;
}
