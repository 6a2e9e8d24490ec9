// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_RING_H
#define BENCHMARKS_SUPPORT_RING_H

#include <array>
#include <cstddef>
#include <random>

/// Inputs that a measurement takes one after the other and then again from the first one on: enough that a processor does
/// not learn them, and few enough that they stay in its cache.
constexpr std::size_t ringSize = 1024;
template <class T>
using Ring = std::array<T, ringSize>;

/// @param make an element from a generator of random numbers, which begins with @p seed.
template <class Make>
auto MakeRing(Make make, unsigned seed = 1)
{
    std::mt19937_64 random(seed);
    Ring<decltype(make(random))> ring{};
    for (auto& element : ring)
        element = make(random);
    return ring;
}

#endif
