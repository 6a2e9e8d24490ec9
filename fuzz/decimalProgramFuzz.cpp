// SPDX-License-Identifier: Apache-2.0
// The input is a program of decimal operations; every result is compared with the oracle's.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/numeric/nxDecimalProgram.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    nxDecimalProgram program(data, size);
    if (!program.Run())
    {
        std::fprintf(stderr, "%s\n", program.GetFailure().c_str());
        std::abort();
    }
    return 0;
}
