// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXWIDE_H
#define CORE_NUMERIC_INLINE_NXWIDE_H

/// @file
/// Integers of 128 bits, which compilers offer beside the language's own.

__extension__ typedef __int128 nxWide;                   ///< -2^127 to 2^127 - 1.
__extension__ typedef unsigned __int128 nxUnsignedWide;  ///< 0 to 2^128 - 1.

#endif
