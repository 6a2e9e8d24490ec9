// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSPIN_H
#define CORE_PLATFORM_NXSPIN_H

/// Waits a moment for an action of another processor. That is much shorter than sleeping and waking, and it ends soon,
/// because the other thread may not be running.
///
/// Threads: no state.
class nxSpin
{
public:
    nxSpin() = delete;

    /// Repeats @p attempt for about a microsecond, until it returns true. @return whether it did.
    template <class Attempt>
    static bool Until(const Attempt& attempt)
    {
        constexpr int pauses = 64;
        for (int passed = 0, next = 1; passed < pauses; passed += next, next *= 2)
        {
            for (int i = 0; i < next; ++i)
                _Pause();
            if (attempt())
                return true;
        }
        return false;
    }

private:
    static void _Pause()
    {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#elif defined(__aarch64__)
        __asm__ __volatile__("yield");
#endif
    }
};

#endif
