// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxThreadIndex.h"

#include <atomic>

namespace
{
// An atomic instead of a counter under a mutex: if another thread held that mutex during a fork, the child could not
// number its thread and therefore could not log.
constinit std::atomic<unsigned> nextIndex{0};  // relaxed: each addition gives another number, and nothing else
}  // namespace

constinit thread_local unsigned long long nxThreadIndex::_indexPlusOne = 0;

nxThreadIndex::nxThreadIndex() : _index(nextIndex.fetch_add(1, std::memory_order_relaxed)) {}

unsigned nxThreadIndex::_Assign()
{
    const nxThreadIndex taken;
    _indexPlusOne = taken._index + 1ULL;
    return taken._index;
}
