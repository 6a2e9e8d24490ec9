// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TEMPORARYFILE_H
#define NXTICK_TEMPORARYFILE_H

#include <sys/stat.h>

#include <csignal>
#include <string>

#include "FileDescriptor.h"

namespace nxtick
{
/// A file that has no name until it is complete, so that nothing is left of it however the program ends.
///
/// If the file system cannot make such files, the file has a name that nobody can guess, ".nxtick-" and 16 digits. It is
/// removed when the object is destroyed or a signal ends the program (SIGHUP, SIGINT, SIGQUIT, SIGTERM). One object
/// exists at a time. All operations return whether they succeeded; if not, errno says why.
class TemporaryFile
{
public:
    TemporaryFile() = default;
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Creates it, open for reading and writing.
    /// @param directory a descriptor that stays open as long as the object lives.
    bool Create(int directory, mode_t mode);

    bool IsOpen() const { return _file.IsOpen(); }
    int Get() const { return _file.Get(); }

    /// Gives it a name of the directory that nobody has: EEXIST when somebody has.
    bool Publish(const std::string& name);
    /// Gives it a name of the directory in the place of the file that has it.
    bool Replace(const std::string& name);

private:
    bool _CreateNamed(mode_t mode);
    bool _Link(const std::string& name) const;
    bool _RenameToFree(const std::string& name) const;
    void _Remove();

    FileDescriptor _file;
    int _directory = -1;
    std::string _name;  // empty while it has none
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
