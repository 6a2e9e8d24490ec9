// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogSocketTarget.h"

#include <cerrno>
#include <cstddef>
#include <new>
#include <utility>

#include "core/log/nxLog.h"
#include "core/platform/nxStandardStream.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr int longestWaitForRoom = 50;  // milliseconds
constexpr std::size_t longestShownPath = 200;
// A message that has grown larger does not keep its memory.
constexpr std::size_t largestKeptMessage = std::size_t{1} << 16;

// Whether a new connection may serve.
bool IsConnectionOver(int error)
{
    switch (error)
    {
        case EBADF:
        case ENOTSOCK:
        case ECONNREFUSED:
        case ECONNRESET:
        case ENOTCONN:
        case EPIPE:
        case ENOENT:
            return true;
        default:
            return false;
    }
}
}  // namespace

nxLogSocketTarget::nxLogSocketTarget(std::string path, nxLocalSocket::Type type) : _path(std::move(path)), _type(type)
{
}

nxLogTarget::Outcome nxLogSocketTarget::_Write(const nxLog& record, const nxLogLosses* losses) noexcept
try
{
    if (!_hasMessage)
    {
        _message.clear();
        _Encode(_message, record, losses);
        _hasMessage = true;
    }
    const bool wasConnected = _socket.IsConnected();
    int error = wasConnected ? _Send() : ENOTCONN;
    if (IsConnectionOver(error))
    {
        error = _Connect();
        if (error == 0)
            error = _Send();
        if (error != 0 && error != EAGAIN && error != EMSGSIZE)
        {
            _socket.Close();
            _TellAway(error);
            return Outcome::Away;
        }
    }
    _isAwayTold = false;
    if (error == EAGAIN)
        return Outcome::Full;
    _hasMessage = false;
    if (_message.capacity() > largestKeptMessage)
        std::string().swap(_message);
    return error == 0 ? Outcome::Taken : Outcome::Lost;
}
catch (...)
{
    _hasMessage = false;
    return Outcome::Lost;
}

int nxLogSocketTarget::_Connect() { return _socket.Connect(_path, _type); }

int nxLogSocketTarget::_Send()
{
    const int error = _socket.Send(_message);
    return error == EMSGSIZE ? _SendLong(_socket, _message) : error;
}

// Targets that take records are given no lines.
nxLogTarget::Outcome nxLogSocketTarget::WriteLines(const nxLogLineBatch&) noexcept { return Outcome::Lost; }

void nxLogSocketTarget::WaitForRoom() const noexcept { _socket.WaitForRoom(longestWaitForRoom); }

void nxLogSocketTarget::Destroy() noexcept { _socket.Close(); }

void nxLogSocketTarget::AfterForkInChild(bool isWhole) noexcept
{
    if (!isWhole)
        new (&_message) std::string;  // a thread of the parent was changing it
    _hasMessage = false;
    _socket.Close();
}

void nxLogSocketTarget::_TellAway(int error)
{
    if (std::exchange(_isAwayTold, true))
        return;
    std::string text = "The log's service at ";
    text.append(nxPrintableText::GetQuoted(_path, longestShownPath)).append(" takes nothing, errno: ");
    text.append(std::to_string(error)).append(". Records wait for it.\n");
    static_cast<void>(nxStandardStream::GetErrors().Write(text));
}
