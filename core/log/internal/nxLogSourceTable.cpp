// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogSourceTable.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "core/log/internal/nxLogEscape.h"
#include "core/log/internal/nxLogJsonText.h"
#include "core/platform/nxThreadSanitizer.h"
#include "core/thread/nxMutexGuard.h"

nxLogSourceTable& nxLogSourceTable::GetInstance() noexcept
{
    alignas(nxLogSourceTable) static unsigned char storage[sizeof(nxLogSourceTable)];
    static nxLogSourceTable& table = *::new (storage) nxLogSourceTable;
    return table;
}

const nxLogSource* nxLogSourceTable::Keep(const char* file, unsigned line, std::size_t folders, bool isOld)
{
    const nxMutexGuard guard(_mutex);
    const char* const path = file - folders;
    const std::size_t pathSize = folders + std::strlen(file);
    const auto found = _sources.find({{path, pathSize}, line, folders, isOld});
    if (found != _sources.end())
        return &found->second;
    std::string suffix(nxLogEscape::GetSuffixRoom(pathSize - folders), '\0');
    suffix.resize(static_cast<std::size_t>(nxLogEscape::PutSuffix(suffix.data(), file, line) - suffix.data()));
    std::string json(nxLogJsonText::GetSourceRoom(pathSize - folders), '\0');
    json.resize(static_cast<std::size_t>(nxLogJsonText::PutSource(json.data(), file, line) - json.data()));
    const std::size_t suffixAt = pathSize + 1;
    const std::size_t jsonAt = suffixAt + std::max(suffix.size(), nxLogSource::SuffixRoom);
    auto texts = std::make_unique<char[]>(jsonAt + std::max(json.size(), nxLogKeptSource::JsonRoom));
    std::memcpy(texts.get(), path, pathSize + 1);
    std::memcpy(texts.get() + suffixAt, suffix.data(), suffix.size());
    std::memcpy(texts.get() + jsonAt, json.data(), json.size());
    const std::string_view keptPath(texts.get(), pathSize);
    const nxLogSource source{texts.get() + folders, line, texts.get() + suffixAt, suffix.size()};
    nxLogKeptSource& kept =
        _sources.try_emplace(Key(keptPath, line, folders, isOld), source, isOld, texts.get() + jsonAt, json.size())
            .first->second;
    // The texts are never freed, as the place is not.
    static_cast<void>(texts.release());
    if (_rules != nullptr)
        kept.level.store(_rules->Find(keptPath), std::memory_order_relaxed);
    if (isOld)
        _hasOldPrograms.store(true, std::memory_order_relaxed);
    return &kept;
}

void nxLogSourceTable::SetRules(std::shared_ptr<const nxLogLevelRules> rules) noexcept
{
    const nxMutexGuard guard(_mutex);
    for (auto& [key, source] : _sources)
        source.level.store(rules != nullptr ? rules->Find(std::get<0>(key)) : NX_ENUM_UNDEFINED,
                           std::memory_order_relaxed);
    _rules.swap(rules);
}

void nxLogSourceTable::AfterForkInChild() noexcept { nxForkMutex::Renew(_mutex); }

// Defined here because a site is the inline part of a statement and does not know the table.
const nxLogSource* nxLogSite::_Keep() noexcept
{
    static constexpr char none[nxLogSource::SuffixRoom] = "";
    static constexpr char noneInJson[nxLogKeptSource::JsonRoom] = R"(,"source":":0","message":")";
    static constinit const nxLogKeptSource unknown({none, 0, none, 0}, false, noneInJson,
                                                   std::char_traits<char>::length(noneInJson));
    try
    {
        const bool isOld = _folders == 0;
        const nxLogSource* const source =
            nxLogSourceTable::GetInstance().Keep(_file, _line, isOld ? 0 : _folders - 1, isOld);
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
