// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxByteSource.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "core/platform/linux/nxSystemCall.h"

namespace
{
// Opens without blocking: a named pipe would otherwise wait for a writer.
int OpenInput(const char* name)
{
    return nxSystemCall::RetryInterrupted([&] { return open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); });
}

bool WaitForInput(int descriptor)
{
    pollfd stream{descriptor, POLLIN, 0};
    return nxSystemCall::RetryInterrupted([&] { return poll(&stream, 1, nxByteSource::LongestSilence * 1000); }) > 0;
}
}  // namespace

nxByteStream::~nxByteStream()
{
    if (IsOpen())
        close(_descriptor);
}

int nxByteStream::Open(const std::string& name)
{
    if (name.find('\0') != std::string::npos)
        return ENOENT;
    _descriptor = OpenInput(name.c_str());
    return IsOpen() ? 0 : errno;
}

bool nxByteStream::IsPipe() const
{
    struct stat status = {};
    return fstat(_descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

int nxByteStream::Read(char* buffer, std::size_t size, std::size_t& read)
{
    read = 0;
    for (int i = 0; i < nxSystemCall::Attempts; ++i)
    {
        const ssize_t taken = nxSystemCall::RetryInterrupted([&] { return ::read(_descriptor, buffer, size); });
        if (taken >= 0)
        {
            read = static_cast<std::size_t>(taken);
            return 0;
        }
        if (errno != EAGAIN)
            return errno;
        if (!WaitForInput(_descriptor))
            return ETIMEDOUT;
    }
    return EAGAIN;  // the system reports input and gives none
}

nxByteSource::Outcome nxByteSource::ReadAll(const std::string& name, std::size_t limit, std::string& content)
{
    content.clear();
    nxByteStream source;
    if (source.Open(name) != 0)
        return Outcome::NotOpened;
    for (;;)
    {
        constexpr std::size_t piece = std::size_t{64} << 10;
        const std::size_t used = content.size();
        content.resize(used + std::min(piece, limit + 1 - used));
        std::size_t taken = 0;
        const int error = source.Read(content.data() + used, content.size() - used, taken);
        content.resize(used + taken);
        if (content.size() > limit)
            return Outcome::TooLarge;
        if (error != 0)
            return error == ETIMEDOUT ? Outcome::Silent : Outcome::NotRead;
        if (taken == 0)
            return content.empty() && source.IsPipe() ? Outcome::Silent : Outcome::Complete;
    }
}
