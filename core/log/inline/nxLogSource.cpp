#include "core/log/inline/nxLogSource.h"

#include "core/log/internal/nxLogSourceTable.h"

const nxLogSource* nxLogSite::_Keep() noexcept
{
    static constexpr char none[nxLogSource::SuffixRoom] = "";
    static constexpr nxLogSource unknown{none, 0, none, 0};
    try
    {
        const nxLogSource* const source = nxLogSourceTable::GetInstance().Keep(_file, _line);
        _source.store(source, std::memory_order_release);
        return source;
    }
    catch (...)
    {
        // No memory: this record names no place, the next one tries again.
        return &unknown;
    }
}
