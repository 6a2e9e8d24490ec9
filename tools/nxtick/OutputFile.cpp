// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "Failure.h"
#include "FileCopy.h"
#include "Terminal.h"
#include "core/app/nxCmdLineArgs.h"
#include "core/platform/nxFileAccess.h"
#include "core/text/nxPrintableText.h"

namespace nxtick
{
namespace
{
constexpr std::size_t bufferSize = std::size_t{1} << 18;
constexpr mode_t modeOfNew = 0666;          // less the user's mask
constexpr mode_t modeOfReplacement = 0600;  // until it has that of the old one

std::string Reason() { return std::strerror(errno); }
}  // namespace

OutputFile::OutputFile(const std::string& path)
    : _name(path == "-" ? "stdout" : nxPrintableText::GetEscaped(path)), _medium(_name), _buffer(bufferSize)
{
    if (path == "-")
    {
        _out = STDOUT_FILENO;
        return;
    }
    _target = FindOutputTarget(path, _name);
    if (!_target.stream.IsOpen())
        _OpenTemporary();
    _out = _target.stream.IsOpen() ? _target.stream.Get() : _temporary.Get();
}

void OutputFile::_OpenTemporary()
{
    const int directory = _target.directory.Get();
    if (!_target.file.IsOpen())
    {
        if (!_temporary.Create(directory, modeOfNew))
            FailToWrite(_name);
        return;
    }
    if (!_target.directory.IsOpen())
        return _OpenTemporaryElsewhere("another program has it open");
    if (!_temporary.Create(directory, modeOfReplacement))
    {
        if (errno != EACCES && errno != EPERM && errno != EROFS)
            FailToWrite(_name);
        return _OpenTemporaryElsewhere("no file can be made beside it: " + Reason());
    }
    if (nxFileAccess::Copy(_target.file.Get(), {}, _target.status, _temporary.Get(), nxFileAccess::Owner::Kept) != 0)
        _whyInPlace = "a new file cannot have its owner and permissions";
}

void OutputFile::_OpenTemporaryElsewhere(const std::string& why)
{
    _whyInPlace = why;
    std::string path = nxCmdLineArgs::GetInstance().GetEnvValue("TMPDIR");
    if (path.empty())
        path = "/tmp";
    _medium = _name + " by way of " + nxPrintableText::GetEscaped(path);
    _elsewhere = FileDescriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!_elsewhere.IsOpen() || !_temporary.Create(_elsewhere.Get(), modeOfReplacement))
        FailToWrite(_medium);
}

void OutputFile::_AppendInPieces(std::string_view text)
{
    _WriteBuffer();
    if (text.size() >= _buffer.size())
        return _Write(text);
    std::memcpy(_buffer.data(), text.data(), text.size());
    _used = text.size();
}

void OutputFile::_WriteBuffer()
{
    const std::size_t size = std::exchange(_used, 0);
    _Write({_buffer.data(), size});
}

void OutputFile::_Write(std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t count = ::write(_out, text.data(), text.size());
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            FailToWrite(_medium);
    }
}

void OutputFile::Flush()
{
    if (!_temporary.IsOpen())
        _WriteBuffer();
}

void OutputFile::Complete()
{
    _WriteBuffer();
    if (_target.stream.IsOpen() && !_target.stream.Close())
        FailToWrite(_name);
    if (!_temporary.IsOpen())
        return;
    if (_whyInPlace.empty() && ::fsync(_temporary.Get()) != 0)
        FailToWrite(_name);
    if (_target.file.IsOpen())
        _Replace();
    else
        _Publish();
}

void OutputFile::_Publish()
{
    if (_temporary.Publish(_target.name))
        return;
    if (errno == EEXIST)
        throw Failure("cannot write " + _name + ": another program has made it meanwhile");
    FailToWrite(_name);
}

void OutputFile::_Replace()
{
    if (!_whyInPlace.empty())
        return _WriteInPlace();
    struct stat now = {};
    if (::fstatat(_target.directory.Get(), _target.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0 ||
        now.st_dev != _target.status.st_dev || now.st_ino != _target.status.st_ino)
        throw Failure("cannot write " + _name + ": another program has removed or replaced it meanwhile");
    if (_temporary.Replace(_target.name))
        return;
    _whyInPlace = "it cannot be replaced: " + Reason();
    _WriteInPlace();
}

void OutputFile::_WriteInPlace()
{
    WriteError("nxtick: " + _name + " is written in place, since " + _whyInPlace + "\n");
    const SignalPause pause;
    bool isTouched = false;
    if (CopyContent(_temporary.Get(), _target.file.Get(), isTouched) && _target.file.Close())
        return;
    const std::string reason = Reason();
    throw Failure("cannot write " + _name + ": " + reason + (isTouched ? "; what was in it is damaged" : ""));
}

void OutputFile::Print(std::string_view text)
{
    OutputFile output("-");
    output.Append(text);
    output.Complete();
}
}  // namespace nxtick
