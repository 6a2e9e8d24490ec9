// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFileReplacement.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxEnvironment.h"
#include "core/platform/nxFile.h"
#include "core/platform/nxFileAccess.h"

namespace
{
constexpr unsigned modeUntilRightsAreCopied = 0600;

// In secure execution the group may be that of the user who started the program.
unsigned ModeOfNewFile() { return nxEnvironment::IsSecureExecution() ? 0600 : 0640; }

int SyncToDisk(const nxDescriptor& file)
{
    // An interrupted call has not failed; any other failure may have lost what a second call would not miss.
    return nxSystemCall::RetryInterrupted([&] { return fsync(file.Get()); }) == 0 ? 0 : errno;
}

nxDescriptor OpenDirectory(const std::string& path, bool& isSearchOnly)
{
    constexpr int flags = O_DIRECTORY | O_CLOEXEC;
    const char* const name = path.empty() ? "." : path.c_str();
    nxDescriptor directory(nxSystemCall::RetryInterrupted([&] { return open(name, O_RDONLY | flags, 0); }));
    // Without the right to read it, files can still be made in it.
    isSearchOnly = !directory.IsOpen() && errno == EACCES;
    if (isSearchOnly)
        directory = nxDescriptor(nxSystemCall::RetryInterrupted([&] { return open(name, O_PATH | flags, 0); }));
    return directory;
}
}  // namespace

nxFileReplacement::nxFileReplacement() : _file(".nxcore-") {}

// Goes to the directory of a path, which is relative to the directory of the path before it.
int nxFileReplacement::_Enter(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos)
        return EINVAL;
    const std::size_t nameAt = path.rfind('/') + 1;  // 0 when there is no slash
    if (path[0] == '/')
        _directoryPath.clear();
    _directoryPath.append(path, 0, nameAt);
    _name = path.substr(nameAt);
    if (_name.empty() || _name == "." || _name == "..")
        return EISDIR;
    _directory = OpenDirectory(_directoryPath, _isSearchOnly);
    return _directory.IsOpen() ? 0 : errno;
}

int nxFileReplacement::_FollowLink()
{
    std::string target(PATH_MAX, '\0');
    const ssize_t size = readlinkat(_directory.Get(), _name.c_str(), target.data(), target.size());
    if (size < 0)
        return errno;
    target.resize(static_cast<std::size_t>(size));
    return _Enter(target);
}

// Finds the file that is to be replaced, behind one link at most.
int nxFileReplacement::_FindOld(struct stat& status)
{
    for (const bool mayFollow : {true, false})
    {
        if (fstatat(_directory.Get(), _name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return errno == ENOENT ? 0 : errno;
        _isThere = S_ISREG(status.st_mode);
        if (!S_ISLNK(status.st_mode))
            return _isThere ? 0 : EINVAL;
        if (!mayFollow)
            break;
        if (!nxFileAccess::MayFollow(_directory.Get(), status))
            return EACCES;
        if (const int error = _FollowLink(); error != 0)
            return error;
    }
    return ELOOP;
}

// Creates the new file, with the rights of the old one if there is one.
int nxFileReplacement::_CreateFile(const struct stat& status)
{
    if (!_isThere)
        return _file.Create(_directory.Get(), ModeOfNewFile());
    if (const int error = _file.Create(_directory.Get(), modeUntilRightsAreCopied); error != 0)
        return error;
    return nxFileAccess::Copy(-1, _directoryPath + _name, status, _file.GetDescriptor().Get(),
                              nxFileAccess::Owner::OrSelf);
}

int nxFileReplacement::Open(const std::string& path)
{
    struct stat status = {};
    int error = _Enter(path);
    if (error == 0)
        error = _FindOld(status);
    return error == 0 ? _CreateFile(status) : error;
}

int nxFileReplacement::OpenNew(const std::string& path)
{
    struct stat status = {};
    _mustBeNew = true;
    if (const int error = _Enter(path); error != 0)
        return error;
    if (fstatat(_directory.Get(), _name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;  // before anything is written for nothing
    return errno == ENOENT ? _CreateFile(status) : errno;
}

// Other code of the process may have closed the descriptors, and may use their numbers.
int nxFileReplacement::_CheckDescriptors() const
{
    struct stat status = {};
    const int error = _directory.Check(status);
    return error != 0 ? error : _file.GetDescriptor().Check(status);
}

int nxFileReplacement::_WriteOut(std::string_view content)
{
    std::size_t written = 0;
    if (content.empty())
        return 0;
    const int error = _CheckDescriptors();
    return error != 0 ? error : nxFile::WriteTo(_file.GetDescriptor().Get(), content.data(), content.size(), written);
}

int nxFileReplacement::Append(std::string_view content)
{
    if (content.size() <= _bufferSize - _buffer.size())
    {
        _buffer.append(content);
        return 0;
    }
    const int error = _WriteOut(_buffer);
    _buffer.clear();
    if (error != 0)
        return error;
    if (content.size() >= _bufferSize)
        return _WriteOut(content);
    _buffer.append(content);
    return 0;
}

int nxFileReplacement::_TakeName()
{
    if (!_isThere)
    {
        const int error = _file.Publish(_name);
        if (error != EEXIST || _mustBeNew)
            return error;
    }
    return _file.Replace(_name);
}

int nxFileReplacement::Commit(bool isDurable)
{
    // What could not be told to the disk afterwards is refused while the old file is still there.
    if (isDurable && _isSearchOnly)
        return EACCES;
    int error = _WriteOut(_buffer);
    if (error == 0)
        error = _CheckDescriptors();
    if (error == 0 && isDurable)
        error = SyncToDisk(_file.GetDescriptor());
    if (error == 0)
        error = _TakeName();
    if (error == 0 && isDurable)
        error = SyncToDisk(_directory);
    return error;
}
