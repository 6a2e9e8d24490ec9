// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXRANDOMTEST_H
#define TESTS_SUPPORT_NXRANDOMTEST_H

#include <cstdint>
#include <cstdlib>

#include "tests/support/nxSanitizer.h"

/// How long a random test runs and where it starts: NX_TEST_OPERATIONS is the number of operations of each test in
/// all, NX_TEST_SEED the seed. Unset, a test does what takes a second at most, the same on every run. Under the
/// sanitizers, which make these tests of one thread up to ten times as slow, it does a fifth of it.
struct nxRandomTest
{
    static std::uint64_t GetOperations(std::uint64_t otherwise)
    {
        return Get("NX_TEST_OPERATIONS", otherwise / (nxUnderThreadSanitizer || nxUnderAddressSanitizer ? 5 : 1));
    }
    static std::uint64_t GetSeed(std::uint64_t otherwise) { return Get("NX_TEST_SEED", otherwise); }

private:
    static std::uint64_t Get(const char* name, std::uint64_t otherwise)
    {
        const char* const text = std::getenv(name);
        return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
    }
};

#endif
