// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXCATALOGUETICKTABLES_H
#define CORE_PRICE_NXCATALOGUETICKTABLES_H

/// @file
/// One class for each tick table of the catalogue, nxVariableTickTableCHIX_CPH1 to nxVariableTickTableEUREX_165, made
/// from the list nxTickTables.inc. An object is the table with its bands. Programs take the shared objects from
/// nxVariableTickTableContainer.

#include "core/nxExport.h"
#include "core/price/nxVariableTickTable.h"

/// @cond
#define NX_TICK_TABLE(name, status, source, note, bands)                           \
    class NX_CORE_API nxVariableTickTable##name final : public nxVariableTickTable \
    {                                                                              \
    public:                                                                        \
        nxVariableTickTable##name();                                               \
    };
#include "core/price/nxTickTables.inc"
#undef NX_TICK_TABLE
/// @endcond

#endif
