#include "core/platform/nxByteSource.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "core/platform/linux/nxUninterrupted.h"

namespace
{
class InputDescriptor
{
public:
    // Not blocking: opening a named pipe would wait for somebody who writes to it.
    explicit InputDescriptor(const char* name)
        : _number(nxUninterrupted::Do([&] { return open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }))
    {
    }
    InputDescriptor(const InputDescriptor&) = delete;
    InputDescriptor& operator=(const InputDescriptor&) = delete;
    ~InputDescriptor()
    {
        if (_number >= 0)
            close(_number);
    }

    bool IsOpen() const { return _number >= 0; }
    bool IsPipe() const
    {
        struct stat status = {};
        return fstat(_number, &status) == 0 && S_ISFIFO(status.st_mode);
    }
    bool WaitForInput() const
    {
        pollfd stream{_number, POLLIN, 0};
        return nxUninterrupted::Do([&] { return poll(&stream, 1, nxByteSource::Patience * 1000); }) > 0;
    }
    // The bytes read, 0 at the end, -1 for an error.
    ssize_t Read(char* to, std::size_t size) const
    {
        return nxUninterrupted::Do([&] { return read(_number, to, size); });
    }

private:
    int _number;
};
}  // namespace

nxByteSource::Outcome nxByteSource::ReadAll(const std::string& name, std::size_t limit, std::string& content)
{
    content.clear();
    if (name.find('\0') != std::string::npos)
        return Outcome::NotOpened;
    const InputDescriptor source(name.c_str());
    if (!source.IsOpen())
        return Outcome::NotOpened;
    for (int inVain = 0; inVain < nxUninterrupted::Attempts;)
    {
        constexpr std::size_t piece = std::size_t{64} << 10;
        const std::size_t used = content.size();
        content.resize(used + std::min(piece, limit + 1 - used));
        const ssize_t taken = source.Read(content.data() + used, content.size() - used);
        const int error = errno;
        content.resize(used + (taken > 0 ? static_cast<std::size_t>(taken) : 0));
        if (content.size() > limit)
            return Outcome::TooLarge;
        if (taken == 0)
            return content.empty() && source.IsPipe() ? Outcome::Silent : Outcome::Complete;
        if (taken < 0 && error != EAGAIN)
            return Outcome::NotRead;
        if (taken < 0 && !source.WaitForInput())
            return Outcome::Silent;
        inVain = taken < 0 ? inVain + 1 : 0;
    }
    return Outcome::NotRead;  // it says that there is input, and gives none
}
