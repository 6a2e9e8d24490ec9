// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxTickViews.h"

#include <algorithm>
#include <new>

const nxTickView* nxTickView::Make(const nxTickGrid& grid, unsigned char places, bool isNegative)
{
    std::unique_ptr<nxTickView> view(new (std::nothrow) nxTickView);
    if (view == nullptr)
        return nullptr;
    const std::size_t count = grid.GetCount();
    view->_zones.reset(new (std::nothrow) nxTickZone[count]);
    view->_lasts.reset(new (std::nothrow) std::uint64_t[count + 2]);
    if (view->_zones == nullptr || view->_lasts == nullptr)
        return nullptr;
    view->_count = count;
    for (std::size_t i = 0; i < count; ++i)
    {
        view->_lasts[i] = grid.GetLast(i, places);
        // A stretch between two prices of this scale holds none, and no search ends there.
        if (i == 0 || view->_lasts[i - 1] < view->_lasts[i])
            grid.Fill(i, places, isNegative, view->_zones[i]);
    }
    std::fill_n(&view->_lasts[count], 2, UINT64_MAX);
    view->_SetFirst();
    return view.release();
}

// For each leading bits the first stretch whose last magnitude has the same or larger ones. Threads may round doubles in
// different directions, so the last magnitudes count as one unit of the double larger.
void nxTickView::_SetFirst()
{
    const std::uint64_t smallest = _GetDoubleBits(1) >> _shift;
    std::size_t stretch = 0;
    for (std::uint64_t bits = smallest; bits != smallest + _leadingBits; ++bits)
    {
        while (stretch < _count && (_GetDoubleBits(_lasts[stretch]) + 1) >> _shift < bits)
            ++stretch;
        _first[bits % _leadingBits] = static_cast<unsigned char>(stretch);
    }
}

std::shared_ptr<const nxTickViews> nxTickViews::Make(const nxTickGrid& grid)
{
    const std::size_t count = grid.GetCount();
    return count == 0 || count > nxTickView::MaxStretches ? nullptr : std::make_shared<const nxTickViews>(grid);
}

nxTickViews::~nxTickViews()
{
    // Relaxed, because the table's owner excludes all searches.
    for (const auto& view : _views)
        delete view.load(std::memory_order_relaxed);
}

const nxTickZone* nxTickViews::FindOrMake(const nxTickGrid& grid, const nxDecimal& price)
{
    const nxTickViews* const views = grid.GetViews();
    if (views == nullptr || price.GetScale() > nxTickGrid::MaxPlaces)
        return nullptr;
    const std::size_t index = _GetIndex(price.GetScale(), price.GetValue());
    const nxTickView* view = views->_views[index].load(std::memory_order_acquire);  // pairs with the release in _Make()
    if (view == nullptr)
        view = views->_Make(index);
    return view == nullptr ? nullptr : view->Find(nxTickZone::Magnitude(price.GetValue()));
}

const nxTickView* nxTickViews::_Make(std::size_t index) const
{
    std::unique_ptr<const nxTickView> made(
        nxTickView::Make(_grid, static_cast<unsigned char>(index / 2), index % 2 != 0));
    if (made == nullptr)
        return nullptr;
    const nxTickView* present = nullptr;
    // Release pairs with the loads of views; where another thread was first, acquire pairs with its release.
    if (_views[index].compare_exchange_strong(present, made.get(), std::memory_order_release,
                                              std::memory_order_acquire))
        return made.release();
    return present;
}
