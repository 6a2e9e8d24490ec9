// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXENUMVALUE_H
#define CORE_ENUM_NXENUMVALUE_H

/// The values of every enumeration class, in one process-wide numbering.
///
/// Each class owns an open interval of it, disjoint from the others; 0, 1 and 2 are shared by all classes. An
/// application's own values are plain numbers of its own interval, cast into this type.
enum nxEnumValue : unsigned int
{
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) constant = value,
#define NX_ERROR_CODE(value, identifier, wording) identifier = value,
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
};

#endif
