// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogSourceTable.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "core/log/internal/nxLogEscape.h"
#include "core/platform/nxThreadSanitizer.h"
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
    const std::size_t fileSize = std::strlen(file);
    std::string suffix(nxLogEscape::GetSuffixRoom(fileSize), '\0');
    suffix.resize(static_cast<std::size_t>(nxLogEscape::PutSuffix(suffix.data(), file, line) - suffix.data()));
    auto texts = std::make_unique<char[]>(fileSize + 1 + std::max(suffix.size(), nxLogSource::SuffixRoom));
    std::memcpy(texts.get(), file, fileSize + 1);
    std::memcpy(texts.get() + fileSize + 1, suffix.data(), suffix.size());
    const nxLogSource source{texts.get(), line, texts.get() + fileSize + 1, suffix.size()};
    const nxLogSource* const kept = &_sources.emplace(Key({texts.get(), fileSize}, line), source).first->second;
    // The texts are never freed, as the place is not.
    static_cast<void>(texts.release());
    return kept;
}

void nxLogSourceTable::AfterForkInChild() noexcept { nxForkMutex::Renew(_mutex); }

// Defined here because a site is the inline part of a statement and does not know the table.
const nxLogSource* nxLogSite::_Keep() noexcept
{
    static constexpr char none[nxLogSource::SuffixRoom] = "";
    static constexpr nxLogSource unknown{none, 0, none, 0};
    try
    {
        const nxLogSource* const source = nxLogSourceTable::GetInstance().Keep(_file, _line);
        nxThreadSanitizer::Release(&_source);  // GetSource() is inlined into the application
        _source.store(source, std::memory_order_release);
        return source;
    }
    catch (...)
    {
        // Without memory this record names no place, and the next one tries again.
        return &unknown;
    }
}
