// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXNANOSECONDS_H
#define CORE_PLATFORM_NXNANOSECONDS_H

#include <cstdint>

/// The unit of the library's clocks and limits.
struct nxNanoseconds
{
    static constexpr std::int64_t PerSecond = 1'000'000'000;
    static constexpr std::int64_t PerMillisecond = 1'000'000;
};

#endif
