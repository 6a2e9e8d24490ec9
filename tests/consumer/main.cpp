#include <iostream>

#include "core/nxCore.h"

int main()
{
    nxErrorEnum error;
    if (!error.SetFromString("NX_ERR_NOT_FOUND"))
        return 1;
    std::cout << NX_CORE_VERSION << ' ' << error.GetLongDescription() << '\n';
    return 0;
}
