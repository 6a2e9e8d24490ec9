// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickKey.h"

namespace
{
// Relaxed: only the number counts.
constinit std::atomic<std::uint64_t> lastTickTableNumber{0};
}  // namespace

void nxTickKey::Renew()
{
    const std::uint64_t number = lastTickTableNumber.fetch_add(_distance, std::memory_order_relaxed) + _distance;
    const std::uint64_t mark = Get() >> _bandShift == _anyBand ? _anyBand : 0;
    _value.store(_GetNumber(number) | mark << _bandShift, std::memory_order_relaxed);
}
