#ifndef CORE_NXEXPORT_H
#define CORE_NXEXPORT_H

/// @file
/// Marks what the shared library exports. Everything else in it is hidden.

// Money is counted here: no sum is regrouped, and NaN is one. Programs that use the library may do as they like.
#if defined(NX_CORE_BUILDING) && (defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__))
    #error "nxcore cannot be built with -Ofast, -ffast-math or -ffinite-math-only"
#endif

#if defined(_WIN32)
    #ifdef NX_CORE_BUILDING
        #define NX_CORE_API __declspec(dllexport)
    #else
        #define NX_CORE_API __declspec(dllimport)
    #endif
#else
    /// Stands before what users of the shared library may call: classes, free functions, operators.
    #define NX_CORE_API __attribute__((visibility("default")))
#endif

#endif
