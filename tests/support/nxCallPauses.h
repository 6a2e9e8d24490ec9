// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXCALLPAUSES_H
#define TESTS_SUPPORT_NXCALLPAUSES_H

/// Pauses around the calls that nxSystemCallFault stands in for, so that threads meet in orders that a quiet machine seldom
/// shows. NX_TEST_PAUSES in the environment of a test program asks for them: how many of a thousand calls pause before,
/// and as many after, up to 20 ms each. None without it. scripts/endure.sh --only pauses runs tests with them.
class nxCallPauses
{
public:
    nxCallPauses() = delete;

    /// Whether pauses are asked for.
    static bool IsOn() noexcept;
    /// Pauses, or mostly does not. Keeps errno. Threads: any, also in signal handlers.
    static void MayPause() noexcept;
};

#endif
