// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXTHREADSANITIZER_H
#define CORE_PLATFORM_NXTHREADSANITIZER_H

#include <atomic>

// Defined by the sanitizer's run-time alone, and null without it. They are tested when the program runs, because the
// program may be built with the sanitizer and the library without it.
extern "C" __attribute__((weak)) void __tsan_acquire(void* address);
extern "C" __attribute__((weak)) void __tsan_release(void* address);

/// Tells the thread sanitizer of a program which of the library's accesses are ordered.
///
/// In a library that is built without the sanitizer it sees locks and the C library's functions, but no atomic objects.
/// So what they order is named here: Release() before the library stores to an atomic object, Acquire() after it has
/// loaded from it, where the memory that this hands over is touched by an application's code or by the C library, as by
/// malloc() and memcpy(). Accesses to the same object that are inlined into the application pair with these.
///
/// In a library that is built with the sanitizer the calls for atomic objects do nothing: they would hide an order that is
/// too weak.
///
/// Without the sanitizer each call is a branch that is never taken. Errors: none. Threads: any.
class nxThreadSanitizer
{
public:
    nxThreadSanitizer() = delete;

    /// Whether the program runs under the sanitizer.
    static bool IsActive() noexcept { return &__tsan_acquire != nullptr; }

    /// All that happened before any Release(@p object) so far happened before what the calling thread does from now on.
    static void Acquire(const void* object) noexcept
    {
        if (IsActive()) [[unlikely]]
            __tsan_acquire(const_cast<void*>(object));
    }
    /// See Acquire().
    static void Release(const void* object) noexcept
    {
        if (IsActive()) [[unlikely]]
            __tsan_release(const_cast<void*>(object));
    }

    /// See Acquire(). The sanitizer sees the atomic object where the library is built with it.
    template <class Value>
    static void Acquire(const std::atomic<Value>* object) noexcept
    {
        if constexpr (!_seesAtomicObjects)
            Acquire(static_cast<const void*>(object));
    }
    /// See Acquire().
    template <class Value>
    static void Release(const std::atomic<Value>* object) noexcept
    {
        if constexpr (!_seesAtomicObjects)
            Release(static_cast<const void*>(object));
    }

private:
#if defined(__SANITIZE_THREAD__)
    static constexpr bool _seesAtomicObjects = true;
#elif defined(__has_feature)
    static constexpr bool _seesAtomicObjects = __has_feature(thread_sanitizer);
#else
    static constexpr bool _seesAtomicObjects = false;
#endif
};

#endif
