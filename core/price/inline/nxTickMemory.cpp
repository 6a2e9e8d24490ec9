// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickMemory.h"

constinit thread_local std::array<nxTickMemory::Place, nxTickMemory::_count> nxTickMemory::_places{};
