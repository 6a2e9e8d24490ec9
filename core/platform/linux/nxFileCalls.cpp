// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFileCalls.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/platform/linux/nxScopedDescriptor.h"
#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxDirectory.h"
#include "core/platform/nxDirectoryReader.h"
#include "core/platform/nxUnnamedFile.h"

namespace
{
bool IsPath(const std::string& path) { return !path.empty() && path.find('\0') == std::string::npos; }

// Reads to the end, but not more than `most` bytes. A file may be longer than its size was, and some files have none.
int ReadToEnd(int file, std::size_t expected, std::size_t most, std::string& content)
{
    constexpr std::size_t leastPiece = 4096;
    // One byte more than expected: the end is then seen without room for another piece.
    content.resize(std::min(most, expected + 1));
    for (std::size_t used = 0;;)
    {
        const auto readOn = [&] { return read(file, content.data() + used, content.size() - used); };
        const ssize_t taken = nxSystemCall::RetryInterrupted(readOn);
        if (taken < 0)
            return errno;
        used += static_cast<std::size_t>(taken);
        if (taken == 0 || used == most)
        {
            content.resize(used);
            return 0;
        }
        if (used == content.size())
            content.resize(std::min(most, std::max(2 * used, leastPiece)));
    }
}
}  // namespace

int nxFileCalls::ReadAll(const std::string& path, std::size_t limit, std::string& content, bool& hasOpened)
{
    hasOpened = false;
    if (!IsPath(path))
        return EINVAL;
    // Not blocking: a pipe in the place of the file must not make this wait for a writer.
    const nxScopedDescriptor file(nxSystemCall::RetryInterrupted(
        [&] { return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0); }));
    if (file.Get() < 0)
        return errno;
    hasOpened = true;
    struct stat status = {};
    if (fstat(file.Get(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size > limit)
        return EFBIG;
    std::string read;
    limit = std::min(limit, read.max_size() - 1);
    if (const int error = ReadToEnd(file.Get(), size, limit + 1, read); error != 0)
        return error;
    if (read.size() > limit)
        return EFBIG;
    content = std::move(read);
    return 0;
}

int nxFileCalls::GetSize(const std::string& path, std::uint64_t& size)
{
    struct stat status = {};
    if (!IsPath(path))
        return EINVAL;
    if (stat(path.c_str(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    size = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

bool nxFileCalls::Exists(const std::string& path)
{
    struct stat status = {};
    return IsPath(path) && stat(path.c_str(), &status) == 0;
}

int nxFileCalls::Remove(const std::string& path)
{
    if (!IsPath(path))
        return EINVAL;
    return unlink(path.c_str()) == 0 ? 0 : errno;
}

int nxFileCalls::Rename(const std::string& from, const std::string& to)
{
    if (!IsPath(from) || !IsPath(to))
        return EINVAL;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int nxFileCalls::CreateTemporary(const std::string& directory, std::string& path)
{
    nxDirectory opened;
    nxDescriptor file;
    std::string name;
    if (!IsPath(directory))
        return EINVAL;
    if (const int error = opened.OpenExisting(directory); error != 0)
        return error;
    std::string whole = directory;
    if (!whole.ends_with('/'))
        whole += '/';
    if (const int error = nxUnnamedFile::CreateNamed(opened.GetDescriptor(), "nxcore-", 0600, file, name); error != 0)
        return error;
    path = whole.append(name);
    return 0;
}

int nxFileCalls::CreateDirectories(const std::string& path)
{
    nxDirectory directory;
    return IsPath(path) ? directory.Open(path) : EINVAL;
}

int nxFileCalls::ListDirectory(const std::string& path, std::vector<std::string>& names)
{
    nxDirectory directory;
    nxDirectoryReader reader;
    if (!IsPath(path))
        return EINVAL;
    int error = directory.OpenExisting(path);
    if (error == 0)
        error = reader.Open(directory);
    if (error != 0)
        return error;
    std::vector<std::string> read;
    for (std::string name; reader.ReadNext(name);)
        read.push_back(name);
    if (reader.GetError() != 0)
        return reader.GetError();
    names = std::move(read);
    return 0;
}
