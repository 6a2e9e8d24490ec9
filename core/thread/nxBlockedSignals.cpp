// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxBlockedSignals.h"

#include "core/platform/nxSignals.h"

nxBlockedSignals::nxBlockedSignals() : nxBlockedSignals({SIGTERM, SIGINT, SIGHUP}) {}

nxBlockedSignals::nxBlockedSignals(std::initializer_list<int> signals)
{
    for (const int signal : signals)
    {
        const nxSignals::Set set = nxSignals::GetSet(signal);
        if (set == 0)
            _error = nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        (nxSignals::IsIgnored(signal) ? _ignored : _signals) |= set;
    }
    _added = nxSignals::Block(_signals);
}

nxBlockedSignals::~nxBlockedSignals() { nxSignals::Unblock(_added); }

bool nxBlockedSignals::Contains(int signal) const noexcept { return (nxSignals::GetSet(signal) & _signals) != 0; }

bool nxBlockedSignals::IsIgnored(int signal) const noexcept { return (nxSignals::GetSet(signal) & _ignored) != 0; }

std::vector<unsigned> nxBlockedSignals::FindOpenThreads() const { return nxSignals::FindThreadsThatAccept(_signals); }

void nxBlockedSignals::RestoreInChild() const noexcept { nxSignals::Unblock(_added); }
