// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NXEXPORT_H
#define CORE_NXEXPORT_H

/// @file
/// Marks what the shared library exports, everything else in it is hidden, and names what the library does not support.

// Money is counted here: no sum is regrouped, and NaN is one. Programs that use the library may do as they like.
#if defined(NX_CORE_BUILDING) && (defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__))
    #error "nxcore cannot be built with -Ofast, -ffast-math or -ffinite-math-only"
#endif

#if __cplusplus < 202002L
    #error "nxcore needs C++20: compile with -std=c++20 or later"
#elif !defined(__linux__) || !defined(__LP64__)
    #error "nxcore needs a 64-bit Linux"
#elif !defined(__x86_64__) && !(defined(__aarch64__) && defined(__AARCH64EL__))
    #error "nxcore supports the processors x86-64 and little-endian aarch64"
#elif defined(__clang__) && __clang_major__ < 14
    #error "nxcore needs clang 14 or later"
#elif !defined(__clang__) && (!defined(__GNUC__) || __GNUC__ < 12)
    #error "nxcore needs g++ 12 or later, or clang 14 or later"
#endif

#include <cstddef>

#if !defined(__GLIBC__)
    #error "nxcore needs the GNU C library"
#elif defined(_GLIBCXX_DEBUG)
    #error "nxcore is not built for _GLIBCXX_DEBUG: use _GLIBCXX_ASSERTIONS"
#elif defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
    #error "nxcore's library was built with the C++11 strings: remove _GLIBCXX_USE_CXX11_ABI=0"
#endif

/// Stands before what users of the shared library may call: classes, free functions, operators.
#define NX_CORE_API __attribute__((visibility("default")))

#endif
