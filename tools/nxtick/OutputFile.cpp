#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <filesystem>
#include <system_error>

#include "Failure.h"

namespace nxtick
{
namespace
{
constexpr std::size_t bufferSize = std::size_t{1} << 18;

// The temporary file, where the signal handler finds it; empty while there is none.
std::array<char, PATH_MAX> temporaryPath{};
volatile std::sig_atomic_t hasTemporary = 0;

void RemoveTemporary(int signal)
{
    if (hasTemporary != 0)
        ::unlink(temporaryPath.data());
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void RememberTemporary(const std::string& path)
{
    std::copy_n(path.c_str(), path.size() + 1, temporaryPath.begin());
    hasTemporary = 1;
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        if (::signal(signal, &RemoveTemporary) == SIG_IGN)
            ::signal(signal, SIG_IGN);  // whoever started the program wants it ignored
}

// The file that the name stands for, behind links, so that the link stays one and its target is replaced, or made where
// the link leads to nothing yet.
std::string Resolve(const std::string& path)
{
    constexpr int mostLinks = 40;  // as many as the system follows
    std::filesystem::path name = path;
    std::error_code error;
    for (int links = 0; links < mostLinks && std::filesystem::is_symlink(name, error); ++links)
        name = name.parent_path() / std::filesystem::read_symlink(name, error);
    return name.string();
}
}  // namespace

OutputFile::OutputFile(const std::string& path) : _name(path.empty() ? "stdout" : path), _buffer(bufferSize)
{
    if (path.empty())
    {
        _file = STDOUT_FILENO;
        return;
    }
    struct stat status = {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT)
        _Fail();
    if (exists && !S_ISREG(status.st_mode))
    {
        _file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (_file < 0)
            _Fail();
        return;
    }
    if (exists && ::access(path.c_str(), W_OK) != 0)
        _Fail();
    _path = Resolve(path);
    _OpenTemporary(exists ? status.st_mode & 0777U : 0);
}

OutputFile::~OutputFile() { _Close(); }

// Creates the temporary file beside the final one. The mode is that of the file to be replaced; 0: as for any new file.
void OutputFile::_OpenTemporary(unsigned mode)
{
    const std::string prefix = _path + ".tmp" + std::to_string(::getpid()) + "-";
    for (int attempt = 0; attempt < 100 && _file < 0; ++attempt)
    {
        _temporary = prefix + std::to_string(attempt);
        if (_temporary.size() >= PATH_MAX)
            errno = ENAMETOOLONG;
        else
            _file = ::open(_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (_file < 0 && errno != EEXIST)
            break;
    }
    if (_file < 0)
    {
        _temporary.clear();
        _Fail();
    }
    RememberTemporary(_temporary);
    if (mode != 0)
        static_cast<void>(::fchmod(_file, mode));  // the owner's wish where the file system can grant it
}

void OutputFile::_AppendInPieces(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t size = std::min(text.size(), _buffer.size() - _used);
        std::memcpy(_buffer.data() + _used, text.data(), size);
        _used += size;
        text.remove_prefix(size);
        if (_used == _buffer.size())
            _Flush();
    }
}

void OutputFile::_Flush()
{
    for (std::size_t done = 0; done < _used;)
    {
        const ssize_t count = ::write(_file, _buffer.data() + done, _used - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            _Fail();
    }
    _used = 0;
}

void OutputFile::Complete()
{
    _Flush();
    if (_file != STDOUT_FILENO)
    {
        const int result = ::close(_file);
        _file = -1;
        if (result != 0)
            _Fail();
    }
    if (!_temporary.empty())
    {
        if (::rename(_temporary.c_str(), _path.c_str()) != 0)
            _Fail();
        hasTemporary = 0;
        _temporary.clear();
    }
}

void OutputFile::Print(std::string_view text)
{
    OutputFile output("");
    output.Append(text);
    output.Complete();
}

void OutputFile::_Close()
{
    if (_file >= 0 && _file != STDOUT_FILENO)
        ::close(_file);
    _file = -1;
    if (_temporary.empty())
        return;
    ::unlink(_temporary.c_str());
    hasTemporary = 0;
    _temporary.clear();
}

void OutputFile::_Fail() const
{
    const std::string reason = std::strerror(errno);  // before anything else can change errno
    throw Failure("cannot write " + _name + ": " + reason);
}
}  // namespace nxtick
