// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogLevelFile.h"

#include <cerrno>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogForkLock.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogOwnReport.h"
#include "core/platform/nxFile.h"
#include "core/text/nxPrintableText.h"
#include "core/thread/nxMutexGuard.h"

nxLogLevelFile& nxLogLevelFile::GetInstance() noexcept
{
    alignas(nxLogLevelFile) static unsigned char storage[sizeof(nxLogLevelFile)];
    static nxLogLevelFile& file = *::new (storage) nxLogLevelFile;
    return file;
}

void nxLogLevelFile::Watch(const std::string& path)
{
    std::string copy = path;
    {
        const nxMutexGuard guard(_mutex);
        if (_path != path)
        {
            _path.swap(copy);
            _seen = Seen();
        }
        _isWatched.store(!_path.empty(), std::memory_order_relaxed);
        if (_path.empty())
            nxLogLevelState::GetInstance().SetFileRules(nullptr);
    }
    Look();
}

std::string nxLogLevelFile::GetPath()
{
    const nxMutexGuard guard(_mutex);
    return _path;
}

void nxLogLevelFile::Look() noexcept
{
    if (!IsWatched())
        return;
    try
    {
        Report report;
        {
            const nxMutexGuard guard(_mutex);
            report = _LookUnderLock();
        }
        // Without the mutex, because the record may have to wait for room.
        if (report.level != NX_ENUM_UNDEFINED)
            nxLogOwnReport::Write(report.level, "core/trunk/nxLogLevels", report.line, report.text);
    }
    catch (...)
    {
        // Without memory the next look tries again.
    }
}

nxLogLevelFile::Report nxLogLevelFile::_LookUnderLock()
{
    nxFileVersion version;
    const int error = nxFileVersion::Read(_path.c_str(), version);
    if (error == ENOENT || error == ENOTDIR)
        return _TellAbsence();
    _seen.isAbsent = false;
    if (error != 0)
        return _TellError(error);
    // A file that changes again within one tick of the system's clock has the same version twice, so it is read again.
    const bool hasChanged = !(version == _seen.version);
    if (!hasChanged && !_seen.mustReadAgain)
        return {};
    Report report = _Read();
    _seen.version = version;
    _seen.mustReadAgain = hasChanged;
    return report;
}

nxLogLevelFile::Report nxLogLevelFile::_Read()
{
    std::string content(LargestFile + 1, '\0');
    std::size_t size = 0;
    if (const int error = nxFile::ReadAll(_path.c_str(), content, size); error != 0)
        return _TellError(error);
    content.resize(size);
    const bool wasRead = _seen.error == 0 && !(_seen.version == nxFileVersion());
    if (wasRead && content == _seen.content)
        return {};
    const auto rules = std::make_shared<nxLogLevelRules>();
    std::string fault;
    Report report;
    if (nxLogLevelRules::Read(content, *rules, fault).IsOK())
    {
        report = {NX_LOG_LEVEL_INFO, 89, "Log levels of file " + _GetName() + ": " + rules->GetText()};
        nxLogLevelState::GetInstance().SetFileRules(rules);
    }
    else
        report = {NX_LOG_LEVEL_WARNING, 93, "Log level file " + _GetName() + " is refused as a whole. In " + fault};
    _seen.error = 0;
    _seen.content.swap(content);
    return report;
}

nxLogLevelFile::Report nxLogLevelFile::_TellAbsence()
{
    if (_seen.isAbsent)
        return {};
    const bool wasThere = !(_seen.version == nxFileVersion());
    Report report;
    if (wasThere)
        report = {NX_LOG_LEVEL_INFO, 106, "Log level file " + _GetName() + " is gone, the program's levels hold"};
    nxLogLevelState::GetInstance().SetFileRules(nullptr);
    _seen = Seen();
    _seen.isAbsent = true;
    return report;
}

nxLogLevelFile::Report nxLogLevelFile::_TellError(int error)
{
    if (std::exchange(_seen.error, error) == error)
        return {};
    return {NX_LOG_LEVEL_WARNING, 117,
            "Log level file " + _GetName() + " cannot be read, errno: " + std::to_string(error)};
}

std::string nxLogLevelFile::_GetName() const
{
    constexpr std::size_t longestName = 256;
    return nxPrintableText::GetQuoted(_path, longestName);
}

void nxLogLevelFile::BeforeFork() noexcept { _isLockedForFork = nxLogForkLock::Take(_mutex); }

void nxLogLevelFile::AfterForkInParent() noexcept
{
    nxLogForkLock::GiveBack(_mutex, std::exchange(_isLockedForFork, false));
}

void nxLogLevelFile::AfterForkInChild() noexcept
{
    const bool isWhole = std::exchange(_isLockedForFork, false);
    nxLogForkLock::RenewInChild(_mutex, isWhole);
    if (isWhole)
        return;
    // Another thread of the parent was changing them.
    ::new (&_path) std::string;
    ::new (&_seen) Seen;
    _isWatched.store(false, std::memory_order_relaxed);
}
