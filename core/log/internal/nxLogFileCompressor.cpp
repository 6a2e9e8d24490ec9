// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFileCompressor.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogErrorLine.h"
#include "core/log/internal/nxLogFileFigures.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxBackgroundProgram.h"
#include "core/platform/nxEnvironment.h"
#include "core/platform/nxFileClaim.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
// The programs, each with the option by which it removes the plain file at the end, if it needs one.
const struct
{
    std::string_view name;
    nxLogFileForm form;
    const char* option;
} knownCompressors[] = {
    {"gzip", nxLogFileForm::Gzip, nullptr},
    {"pigz", nxLogFileForm::Gzip, nullptr},
    {"zstd", nxLogFileForm::Zstd, "--rm"},
    {"xz", nxLogFileForm::Xz, nullptr},
};
}  // namespace

void nxLogFileCompressor::Set(const std::string& program)
{
    _path.clear();
    _options.clear();
    _failureIsTold = false;
    _pauseEnd = 0;
    // The program would have rights that its caller does not have.
    if (program.empty() || nxEnvironment::IsSecureExecution())
        return;
    const std::string_view name = std::string_view(program).substr(program.rfind('/') + 1);
    for (const auto& known : knownCompressors)
        if (name == known.name)
        {
            _path = nxBackgroundProgram::Find(program);
            _form = known.form;
            if (known.option != nullptr)
                _options.emplace_back(known.option);
            _options.emplace_back("--");
        }
    if (_path.empty())
        nxLogErrorLine::Tell("Log files are not compressed: no such program, or not one of gzip, pigz, zstd and xz: " +
                             program);
}

// Removes what programs have left that were killed. @return false if one may be writing.
bool nxLogFileCompressor::_RemoveRests(const nxLogFileSurvey::Place& place, const nxLogKeptFile& file) const
{
    for (const nxLogFileForm form : nxLogKeptFile::CompressedForms)
    {
        nxDirectoryEntry::Facts facts;
        const std::string name = file.GetNameAs(place.application, form);
        if (nxDirectoryEntry::Look(_folder, name, facts) != 0)
            continue;
        const std::int64_t age = nxClock::Now().seconds - facts.modified / nxNanoseconds::PerSecond;
        if (!facts.isOwnFile || age < nxLogLimits::FreshFileSeconds || nxDirectoryEntry::RemoveFile(_folder, name) != 0)
            return false;
    }
    return true;
}

void nxLogFileCompressor::Start(const nxLogFileSurvey::Place& place, const nxLogKeptFile& file, std::int64_t now)
{
    nxDirectory root;
    nxFileClaim claim;
    const std::string name = file.GetName(place.application);
    if (place.Open(root) != 0 || _folder.OpenExisting(root, file.GetFolder()) != 0 || claim.Take(_folder, name) != 0 ||
        !_RemoveRests(place, file))
        return;
    _file = file;
    std::vector<std::string> arguments = _options;
    arguments.push_back(name);
    const int error = nxBackgroundProgram::Start(_path, arguments, _folder, claim.GetDescriptor(), _process);
    _isRunning = error == 0;
    if (_isRunning)
        return;
    _process = 0;
    _End(name, true, now);
}

void nxLogFileCompressor::Look(const nxLogFileSurvey::Place& place, std::int64_t now)
{
    if (!_isRunning)
    {
        if (_process != 0 && nxBackgroundProgram::Reap(_process))
            _process = 0;
        return;
    }
    nxFileClaim claim;
    const std::string name = _file.GetName(place.application);
    const int error = _folder.IsSound() ? claim.Take(_folder, name) : EBADF;
    if (error == EAGAIN)
        return;
    _isRunning = false;
    if (nxBackgroundProgram::Reap(_process))
        _process = 0;
    if (error == ENOENT && nxDirectoryEntry::Exists(_folder, _file.GetNameAs(place.application, _form)))
    {
        nxLogFileFigures::Add(nxLogFileFigures::Compressed);
        _failureIsTold = false;
    }
    _End(name, error == 0, now);
}

void nxLogFileCompressor::_End(const std::string& name, bool failed, std::int64_t now)
{
    _folder = nxDirectory();
    if (!failed)
        return;
    _pauseEnd = now + nxLogLimits::RetentionInterval;
    nxLogFileFigures::Add(nxLogFileFigures::CompressErrors);
    if (!std::exchange(_failureIsTold, true))
        nxLogErrorLine::Tell("Failed to compress log file " + name + " with " + _path + ", it stays as it is.");
}

void nxLogFileCompressor::ForgetInChild()
{
    _isRunning = false;
    _process = 0;
    _folder = nxDirectory();
}
