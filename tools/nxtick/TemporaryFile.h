// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TEMPORARYFILE_H
#define NXTICK_TEMPORARYFILE_H

#include <sys/stat.h>

#include <csignal>
#include <string>

#include "core/platform/nxUnnamedFile.h"

namespace nxtick
{
/// An nxUnnamedFile that is also removed when SIGHUP, SIGINT, SIGQUIT or SIGTERM ends the program, where the file system
/// gives it a name from the beginning: ".nxtick-" and 16 digits. One object exists at a time. All operations return whether
/// they succeeded; if not, errno says why.
class TemporaryFile
{
public:
    TemporaryFile() : _file(".nxtick-") {}
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Creates it, open for reading and writing.
    /// @param directory a descriptor that stays open as long as the object lives.
    bool Create(int directory, mode_t mode);

    bool IsOpen() const { return _file.IsOpen(); }
    int Get() const { return _file.GetDescriptor().Get(); }

    /// Gives it a name of the directory that nobody has: EEXIST when somebody has.
    bool Publish(const std::string& name);
    /// Gives it a name of the directory in the place of the file that has it.
    bool Replace(const std::string& name);

private:
    nxUnnamedFile _file;
};

/// Keeps SIGHUP, SIGINT, SIGQUIT and SIGTERM waiting as long as it exists.
class SignalPause
{
public:
    SignalPause();
    ~SignalPause();
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;

private:
    sigset_t _before;
};
}  // namespace nxtick

#endif
