#ifndef CORE_ENUM_NXENUMROWS_H
#define CORE_ENUM_NXENUMROWS_H

#include "core/enum/nxEnum.h"

/// Internal to the library: the rows of nxEnumValues.inc and nxErrorCodes.inc, ascending, as constants.
struct nxEnumRows
{
    const nxEnum::ValueTexts* first;  ///< The first row.
    const nxEnum::ValueTexts* last;   ///< One past the last row.

    /// All rows.
    static nxEnumRows GetAll();
    /// The rows whose values lie between @p lowest and @p highest, both included.
    static nxEnumRows GetRange(unsigned lowest, unsigned highest);
};

#endif
