// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFUNCTORCELLS_H
#define CORE_THREAD_INTERNAL_NXFUNCTORCELLS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "core/thread/inline/nxFunctorActions.h"

/// One functor, in a cache line of its own.
struct alignas(64) nxFunctorCell
{
    alignas(std::max_align_t) unsigned char place[nxFunctorActions::PlaceBytes];
    const nxFunctorActions* actions;
};
static_assert(sizeof(nxFunctorCell) == 64);

/// Cells that are in order. A plain value: who has it has the cells.
struct nxFunctorChain
{
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::uint32_t count = 0;
};

/// A fixed number of cells. Each is in a chain, or with a thread that makes or runs its functor.
///
/// Memory: all of it is touched in the constructor, so that no thread waits for a page later.
/// Threads: the owner's lock guards each chain that several threads know.
class nxFunctorCells
{
public:
    static constexpr std::size_t Most = 2'000'000'000;

    /// @throws std::bad_alloc
    explicit nxFunctorCells(std::size_t count) : _cells(_Allocate(count)), _next(new std::uint32_t[count]) {}

    /// Makes one chain of the first @p count cells.
    nxFunctorChain Link(std::uint32_t count)
    {
        nxFunctorChain chain;
        for (std::uint32_t cell = 0; cell < count; ++cell)
        {
            _cells[cell].actions = nullptr;
            Append(chain, {cell, cell, 1});
        }
        return chain;
    }

    nxFunctorCell& operator[](std::uint32_t cell) const { return _cells[cell]; }
    /// @pre The cell is not the last one of its chain.
    std::uint32_t GetNext(std::uint32_t cell) const { return _next[cell]; }
    /// Asks the processor for a cell that is going to be used, which another one may have.
    void Prefetch(std::uint32_t cell) const { __builtin_prefetch(&_cells[cell], 1); }

    void Append(nxFunctorChain& chain, const nxFunctorChain& added)
    {
        if (added.count == 0)
            return;
        if (chain.count == 0)
            chain.first = added.first;
        else
            _next[chain.last] = added.first;
        chain.last = added.last;
        chain.count += added.count;
    }
    void Prepend(nxFunctorChain& chain, nxFunctorChain added)
    {
        Append(added, chain);
        chain = added;
    }
    /// @pre 1 <= @p count <= chain.count
    nxFunctorChain TakeFirst(nxFunctorChain& chain, std::uint32_t count)
    {
        nxFunctorChain taken{chain.first, chain.first, count};
        for (std::uint32_t i = 1; i < count; ++i)
            taken.last = _next[taken.last];
        chain.count -= count;
        if (chain.count != 0)
            chain.first = _next[taken.last];
        return taken;
    }

    /// Leaves the memory allocated for ever.
    void Leak() { static_cast<void>(_cells.release()); }

private:
    static nxFunctorCell* _Allocate(std::size_t count)
    {
        if (count > Most)
            throw std::bad_alloc();
        return new nxFunctorCell[count];
    }

    std::unique_ptr<nxFunctorCell[]> _cells;
    // Of each cell, the next one in its chain. Apart from the cells, so that a chain is followed without a look at them.
    std::unique_ptr<std::uint32_t[]> _next;
};

#endif
