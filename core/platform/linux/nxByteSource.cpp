// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxByteSource.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "core/platform/linux/nxScopedDescriptor.h"
#include "core/platform/linux/nxSystemCall.h"

namespace
{
// Opens without blocking: a named pipe would otherwise wait for a writer.
int OpenInput(const char* name)
{
    return nxSystemCall::RetryInterrupted([&] { return open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); });
}

bool IsPipe(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

bool WaitForInput(int descriptor)
{
    pollfd stream{descriptor, POLLIN, 0};
    return nxSystemCall::RetryInterrupted([&] { return poll(&stream, 1, nxByteSource::LongestSilence * 1000); }) > 0;
}
}  // namespace

nxByteSource::Outcome nxByteSource::ReadAll(const std::string& name, std::size_t limit, std::string& content)
{
    content.clear();
    if (name.find('\0') != std::string::npos)
        return Outcome::NotOpened;
    const nxScopedDescriptor source(OpenInput(name.c_str()));
    if (source.Get() < 0)
        return Outcome::NotOpened;
    for (int fruitless = 0; fruitless < nxSystemCall::Attempts;)
    {
        constexpr std::size_t piece = std::size_t{64} << 10;
        const std::size_t used = content.size();
        content.resize(used + std::min(piece, limit + 1 - used));
        const ssize_t taken = nxSystemCall::RetryInterrupted(
            [&] { return read(source.Get(), content.data() + used, content.size() - used); });
        const int error = errno;
        content.resize(used + (taken > 0 ? static_cast<std::size_t>(taken) : 0));
        if (content.size() > limit)
            return Outcome::TooLarge;
        if (taken == 0)
            return content.empty() && IsPipe(source.Get()) ? Outcome::Silent : Outcome::Complete;
        if (taken < 0 && error != EAGAIN)
            return Outcome::NotRead;
        if (taken < 0 && !WaitForInput(source.Get()))
            return Outcome::Silent;
        fruitless = taken < 0 ? fruitless + 1 : 0;
    }
    return Outcome::NotRead;  // the system reports input and gives none
}
