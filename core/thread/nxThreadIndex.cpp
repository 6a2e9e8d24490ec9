#include "core/thread/nxThreadIndex.h"

#include <atomic>

namespace
{
// An atomic and not a counter under a mutex: a process that forks while another thread holds the mutex would leave the
// child unable to number its thread, and with that unable to log.
constinit std::atomic<unsigned> nextIndex{0};
}  // namespace

constinit thread_local unsigned long long nxThreadIndex::_indexPlusOne = 0;

nxThreadIndex::nxThreadIndex() : _index(nextIndex.fetch_add(1, std::memory_order_relaxed)) {}

unsigned nxThreadIndex::_Assign()
{
    const nxThreadIndex taken;
    _indexPlusOne = taken._index + 1ULL;
    return taken._index;
}
