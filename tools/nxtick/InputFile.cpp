// SPDX-License-Identifier: Apache-2.0
#include "InputFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Failure.h"
#include "core/text/nxPrintableText.h"

namespace nxtick
{
InputFile::InputFile(const std::string& path)
    : _name(path == "-" ? "stdin" : nxPrintableText::GetEscaped(path)),
      _file(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (_file < 0)
        _Fail();
    struct stat status = {};
    if (::fstat(_file, &status) == 0 && S_ISREG(status.st_mode))
    {
        _isRegular = true;
        _size = static_cast<std::uint64_t>(status.st_size);
    }
}

InputFile::~InputFile()
{
    if (_file != STDIN_FILENO)
        ::close(_file);
}

std::size_t InputFile::Read(char* buffer, std::size_t size)
{
    ssize_t count = 0;
    do
        count = ::read(_file, buffer, size);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        _Fail();
    _read += static_cast<std::uint64_t>(count);
    return static_cast<std::size_t>(count);
}

bool InputFile::WouldWait() const
{
    pollfd readiness = {_file, POLLIN, 0};
    return !_isRegular && ::poll(&readiness, 1, 0) == 0;
}

bool InputFile::Await(int other) const
{
    pollfd both[] = {{_file, POLLIN, 0}, {other, POLLIN, 0}};
    while (::poll(both, 2, -1) < 0 && errno == EINTR)
    {
    }
    return both[1].revents == 0;
}

bool InputFile::IsSameFile(int descriptor) const
{
    struct stat own = {};
    struct stat other = {};
    return ::fstat(_file, &own) == 0 && S_ISREG(own.st_mode) && ::fstat(descriptor, &other) == 0 &&
           own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

double InputFile::GetShareRead() const
{
    return _size == 0 ? -1.0 : static_cast<double>(_read) / static_cast<double>(_size);
}

void InputFile::_Fail() const
{
    const std::string reason = std::strerror(errno);  // before anything else can change errno
    throw Failure("cannot read " + _name + ": " + reason);
}
}  // namespace nxtick
