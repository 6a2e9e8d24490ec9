// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXINITALIZERS_H
#define CORE_TEXT_NXINITALIZERS_H

/// @file
/// The tags that select a constructor of a nullable value. Their spelling is part of the interface.
/// @code
/// const nxDecimal price{nxNullInitalizer{}};       // no value
/// const nxDecimal limit{nxNoChangeInitalizer{}};   // "leave the stored value as it is"
/// @endcode

/// Selects the constructor that makes a null value.
enum class nxNullInitalizer : unsigned char
{
    Null
};

/// Selects the constructor that makes a value meaning "leave the receiver's value as it is".
enum class nxNoChangeInitalizer : unsigned char
{
    NoChange
};

#endif
