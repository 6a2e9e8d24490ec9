// SPDX-License-Identifier: Apache-2.0
#include "core/enum/internal/nxRegistrationLock.h"

#include "core/platform/nxForkHandlers.h"

constinit std::mutex nxRegistrationLock::_mutex;

const bool nxRegistrationLock::_isKeptAcrossForks = []
{
    static constexpr nxForkHandlers::Functions aroundForks{[] { _mutex.lock(); }, [] { _mutex.unlock(); },
                                                           [] { _mutex.unlock(); }};
    return nxForkHandlers::Register(nxForkHandlers::Rank::Registries, aroundForks);
}();
