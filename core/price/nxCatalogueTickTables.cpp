// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxCatalogueTickTables.h"

#define NX_TICK_TABLE(name, status, source, note, bands) \
    nxVariableTickTable##name::nxVariableTickTable##name() : nxVariableTickTable(Unwatched()) { _AddRanges(bands); }
#include "core/price/nxTickTables.inc"
#undef NX_TICK_TABLE
