#ifndef TESTS_SUPPORT_NXSANITIZER_H
#define TESTS_SUPPORT_NXSANITIZER_H

/// Whether the program is built with the thread sanitizer, which objects to the misuse of locks that some tests are
/// about, and which does not know every function of the C library.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool nxUnderThreadSanitizer = true;
#elif defined(__has_feature)
    #if __has_feature(thread_sanitizer)
inline constexpr bool nxUnderThreadSanitizer = true;
    #else
inline constexpr bool nxUnderThreadSanitizer = false;
    #endif
#else
inline constexpr bool nxUnderThreadSanitizer = false;
#endif

/// Why a test is left out there.
inline constexpr const char* nxNoThreadsAfterFork =
    "the thread sanitizer ends a forked child of several threads that starts one of its own";

/// The same of the address sanitizer, whose allocator hangs in a child that is forked while another thread is in it.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool nxUnderAddressSanitizer = true;
#elif defined(__has_feature)
    #if __has_feature(address_sanitizer)
inline constexpr bool nxUnderAddressSanitizer = true;
    #else
inline constexpr bool nxUnderAddressSanitizer = false;
    #endif
#else
inline constexpr bool nxUnderAddressSanitizer = false;
#endif

/// Why a test is left out there.
inline constexpr const char* nxNoForkAmongThreads =
    "the address sanitizer's allocator does not survive a fork while threads are in it";

#endif
