// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILECOMPRESSOR_H
#define CORE_LOG_INTERNAL_NXLOGFILECOMPRESSOR_H

#include <cstdint>
#include <string>
#include <vector>

#include "core/log/internal/nxLogFileSurvey.h"
#include "core/log/internal/nxLogKeptFile.h"
#include "core/platform/nxDirectory.h"

/// Has closed log files compressed, one at a time, by a program of the system.
///
/// Invariant: the program has the claim on the file until it ends, so that nobody else compresses or removes the file. The
/// program removes the plain file only after the compressed one is complete: a plain file that is still there afterwards
/// tells of a failure.
///
/// Threads: none. Errors: told on the error stream, once until a file was compressed; std::bad_alloc is thrown.
class nxLogFileCompressor
{
public:
    /// @param program as in nxLogRetention. One that does not exist, or that is not known, is told.
    void Set(const std::string& program);
    /// Whether there is a program and no failure has made it wait.
    bool MayStart(std::int64_t now) const { return !_path.empty() && _process == 0 && now >= _pauseEnd; }
    bool IsRunning() const { return _process != 0; }

    /// Starts the program, if nobody has the file and no other program is writing its compressed form.
    void Start(const nxLogFileSurvey::Place& place, const nxLogKeptFile& file, std::int64_t now);
    /// Looks whether the program has ended.
    void Look(const nxLogFileSurvey::Place& place, std::int64_t now);
    /// The child of a fork leaves the program to its parent.
    void ForgetInChild();

private:
    bool _RemoveRests(const nxLogFileSurvey::Place& place, const nxLogKeptFile& file) const;
    void _End(const std::string& name, bool failed, std::int64_t now);

    std::string _path;  // empty for none
    nxLogFileForm _form = nxLogFileForm::Plain;
    std::vector<std::string> _options;
    std::int64_t _pauseEnd = 0;
    bool _failureIsTold = false;

    bool _isRunning = false;
    int _process = 0;  // until it has ended for good
    nxLogKeptFile _file;
    nxDirectory _folder;
};

#endif
