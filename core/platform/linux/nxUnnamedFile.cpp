// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxUnnamedFile.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/random.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "core/platform/linux/nxSystemCall.h"

namespace
{
constexpr int mostNamesTried = 100;

// Empty when the system has no random numbers.
std::string MakeSecretName(const std::string& prefix)
{
    constexpr char digits[] = "0123456789abcdef";
    std::array<unsigned char, 8> bytes{};
    const auto fill = [&] { return getrandom(bytes.data(), bytes.size(), 0); };
    if (nxSystemCall::RetryInterrupted(fill) != static_cast<ssize_t>(bytes.size()))
        return {};
    std::string name = prefix;
    for (const unsigned char byte : bytes)
    {
        name += digits[byte >> 4];
        name += digits[byte & 15];
    }
    return name;
}

// Tries names until `make` returns something else than EEXIST. Returns what it returned.
template <class Make>
int MakeUnderSecretName(const std::string& prefix, std::string& made, const Make& make)
{
    int error = EEXIST;
    for (int attempt = 0; error == EEXIST && attempt < mostNamesTried; ++attempt)
    {
        std::string name = MakeSecretName(prefix);
        error = name.empty() ? EIO : make(name);
        if (error == 0)
            made = std::move(name);
    }
    return error;
}

std::string PathOfDescriptor(int file) { return "/proc/self/fd/" + std::to_string(file); }

bool IsForWantOfUnnamedFiles(int error)
{
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOENT;
}
}  // namespace

nxUnnamedFile::nxUnnamedFile(std::string prefix) : _prefix(std::move(prefix)) {}

int nxUnnamedFile::Create(int directory, unsigned mode)
{
    _directory = directory;
    _process = getpid();
    _file = nxDescriptor(nxSystemCall::RetryInterrupted(
        [&] { return openat(directory, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, static_cast<mode_t>(mode)); }));
    if (!_file.IsOpen() && !IsForWantOfUnnamedFiles(errno))
        return errno;
    // Without /proc there is no way to give it a name later.
    if (_file.IsOpen() && access(PathOfDescriptor(_file.Get()).c_str(), F_OK) == 0)
        return 0;
    return CreateNamed(directory, _prefix, mode, _file, _name);
}

int nxUnnamedFile::CreateNamed(int directory, const std::string& prefix, unsigned mode, nxDescriptor& file,
                               std::string& name)
{
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    return MakeUnderSecretName(
        prefix, name,
        [&](const std::string& candidate)
        {
            file = nxDescriptor(nxSystemCall::RetryInterrupted(
                [&] { return openat(directory, candidate.c_str(), flags, static_cast<mode_t>(mode)); }));
            return file.IsOpen() ? 0 : errno;
        });
}

int nxUnnamedFile::_Link(const std::string& name) const
{
    const std::string own = PathOfDescriptor(_file.Get());
    return linkat(AT_FDCWD, own.c_str(), _directory, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

int nxUnnamedFile::_LinkBetween()
{
    return MakeUnderSecretName(_prefix, _name, [&](const std::string& candidate) { return _Link(candidate); });
}

int nxUnnamedFile::_RenameToFree(const std::string& name)
{
    if (renameat2(_directory, _name.c_str(), _directory, name.c_str(), RENAME_NOREPLACE) == 0)
    {
        _name.clear();
        return 0;
    }
    // Not every file system knows the flag.
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    if (linkat(_directory, _name.c_str(), _directory, name.c_str(), 0) != 0)
        return errno;
    _RemoveName();
    return 0;
}

int nxUnnamedFile::Publish(const std::string& name) { return _name.empty() ? _Link(name) : _RenameToFree(name); }

int nxUnnamedFile::Replace(const std::string& name)
{
    if (const int error = _name.empty() ? _LinkBetween() : 0; error != 0)
        return error;
    if (renameat(_directory, _name.c_str(), _directory, name.c_str()) != 0)
    {
        const int error = errno;
        _RemoveName();
        return error;
    }
    _name.clear();
    return 0;
}

void nxUnnamedFile::_RemoveName()
{
    if (!_name.empty() && _process == getpid())
        unlinkat(_directory, _name.c_str(), 0);
    _name.clear();
}

void nxUnnamedFile::Drop()
{
    _RemoveName();
    _file.Close();
}
