// SPDX-License-Identifier: Apache-2.0
// Prints each change of the zones that it is given, with its new offset, and the moments of the local times around it.

#include <iostream>

#include "core/time/nxZone.h"

namespace
{
const nxDateTime epoch(nxDate(1970, 1, 1), nxTime(0, 0, 0));

long long Offset(const nxZone& zone, long long second)
{
    return (zone.GetLocal(nxTimeStamp(second, 0)) - epoch).GetTotalSeconds() - second;
}

long long Moment(const nxZone& zone, long long local, bool later)
{
    nxTimeStamp moment(0, 0);
    const nxDateTime at = epoch.GetWithSpanAdded(nxDateTimeSpan::GetFromSeconds(local));
    return zone.GetMoment(at, moment, later).IsOK() ? moment.GetSeconds() : 0;
}

void PrintChange(const nxZone& zone, long long second)
{
    const long long before = second + Offset(zone, second - 1), after = second + Offset(zone, second);
    std::cout << "change " << zone.GetName() << ' ' << second << ' ' << after - second << '\n';
    for (const long long local : {before - 1, before, (before + after) / 2, after - 1, after})
        std::cout << "local " << zone.GetName() << ' ' << local << ' ' << Moment(zone, local, false) << ' '
                  << Moment(zone, local, true) << '\n';
}
}  // namespace

int main(int count, char** names)
{
    constexpr long long first = -2'208'988'800, end = 4'102'444'800, step = 4 * 3'600;
    for (int i = 1; i < count; ++i)
    {
        const nxZone* zone = nullptr;
        if (!nxZone::Get(names[i], zone).IsOK())
            return 1;
        for (long long second = first; second + step < end; second += step)
        {
            long long low = second, high = second + step;
            if (Offset(*zone, low) == Offset(*zone, high))
                continue;
            while (high - low > 1)
                (Offset(*zone, (low + high) / 2) == Offset(*zone, low) ? low : high) = (low + high) / 2;
            PrintChange(*zone, high);
        }
    }
}
