#include "core/log/inline/nxLogSource.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogSourceTable.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

nxLogSourceTable& nxLogSourceTable::GetInstance() noexcept
{
    alignas(nxLogSourceTable) static unsigned char storage[sizeof(nxLogSourceTable)];
    static nxLogSourceTable& table = *::new (storage) nxLogSourceTable;
    return table;
}

const nxLogSource* nxLogSourceTable::Keep(const char* file, unsigned line)
{
    const nxMutexGuard guard(_mutex);
    const auto found = _sources.find({file, line});
    if (found != _sources.end())
        return &found->second;
    nxLogLineBuffer suffix;
    if (!suffix.AppendSuffix(file, line))
        throw std::bad_alloc();
    // The texts stay for the life of the process, as the place does.
    const std::size_t fileSize = std::strlen(file);
    char* const texts = new char[fileSize + 1 + std::max(suffix.GetSize(), nxLogSource::SuffixRoom)]();
    std::memcpy(texts, file, fileSize + 1);
    std::memcpy(texts + fileSize + 1, suffix.GetText(), suffix.GetSize());
    const nxLogSource source{texts, line, texts + fileSize + 1, suffix.GetSize()};
    return &_sources.emplace(Key(std::string_view(texts, fileSize), line), source).first->second;
}

void nxLogSourceTable::AfterForkInChild() noexcept { nxForkMutex::Renew(_mutex); }

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
