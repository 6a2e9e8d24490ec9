// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXSANITIZER_H
#define TESTS_SUPPORT_NXSANITIZER_H

// clang++ tells by features, g++ by macros.
#ifdef __has_feature
    #define NX_TEST_FEATURE(name) __has_feature(name)
#else
    #define NX_TEST_FEATURE(name) 0
#endif

/// Whether the program is built with the thread sanitizer, which objects to the misuse of locks that some tests are
/// about, and which does not know every function of the C library.
inline constexpr bool nxUnderThreadSanitizer =
#if defined(__SANITIZE_THREAD__) || NX_TEST_FEATURE(thread_sanitizer)
    true;
#else
    false;
#endif

/// Whether it is built with the address sanitizer.
inline constexpr bool nxUnderAddressSanitizer =
#if defined(__SANITIZE_ADDRESS__) || NX_TEST_FEATURE(address_sanitizer)
    true;
#else
    false;
#endif

/// Why a test is left out under the thread sanitizer.
inline constexpr const char* nxNoThreadsAfterFork =
    "the thread sanitizer ends a forked child of several threads that starts one of its own";

#endif
