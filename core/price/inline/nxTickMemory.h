// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKMEMORY_H
#define CORE_PRICE_INLINE_NXTICKMEMORY_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/nxExport.h"
#include "core/price/inline/nxTickKey.h"
#include "core/price/inline/nxTickZone.h"

/// What a thread remembers of its searches in tick tables: the last zone in each of sixteen tables. Two tables whose
/// numbers differ by a multiple of sixteen share a place, and the later search has it.
///
/// A table keeps its zones as long as it has its key, and no key is ever given again. So a place whose key is that of a
/// living table refers to a living zone, and places of tables that are gone are never read.
/// - Threads: each has its own, without a destructor, so tables answer also while thread-locals are destroyed.
class NX_CORE_API nxTickMemory
{
public:
    /// What is remembered of one table.
    struct Place
    {
        std::uint64_t key = UINT64_MAX;  ///< The table's, plus the scale of the zone's prices; the largest for nothing.
        const nxTickZone* zone = nullptr;  ///< One that rounds.

        /// @return whether the zone is one of the table with that key, for prices of that scale.
        bool IsOf(std::uint64_t tableKey, std::uint64_t scale) const { return key == tableKey + scale; }
    };

    /// @return the calling thread's place for the table with that key. It may be that of another table.
    static Place& Get(std::uint64_t tableKey)
    {
        unsigned char* const first = reinterpret_cast<unsigned char*>(_places.data());
        return *reinterpret_cast<Place*>(first + nxTickKey::GetOffset(tableKey));
    }
    /// Remembers a zone in place of an earlier one, if it rounds.
    static void Remember(std::uint64_t tableKey, const nxTickZone& zone)
    {
        if (zone.roundingPlaces != nxTickZone::NoPlaces) [[likely]]
            Get(tableKey) = {tableKey + zone.places, &zone};
    }

private:
    static constexpr std::size_t _count = 16;

    static_assert(sizeof(Place) * _count == nxTickKey::OffsetEnd);

    // Initial-exec, so that it is read without a call from every module into which the code is inlined.
    static constinit thread_local std::array<Place, _count> _places __attribute__((tls_model("initial-exec")));
};

#endif
