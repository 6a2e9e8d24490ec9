#ifndef CORE_NXEXPORT_H
#define CORE_NXEXPORT_H

/// @file
/// Marks what the shared library exports. Everything else in it is hidden.

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
