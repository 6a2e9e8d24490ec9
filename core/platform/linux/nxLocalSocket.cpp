// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxLocalSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "core/platform/linux/nxSystemCall.h"

namespace
{
int SendMessage(int descriptor, const msghdr& message, ssize_t& sent)
{
    sent = nxSystemCall::RetryInterrupted([&] { return sendmsg(descriptor, &message, MSG_NOSIGNAL | MSG_DONTWAIT); });
    if (sent >= 0)
        return 0;
    // The system is short of memory for buffers; like a full service it has room later.
    return errno == ENOBUFS || errno == ENOMEM ? EAGAIN : errno;
}

int SendBytes(int descriptor, std::string_view bytes, ssize_t& sent)
{
    iovec piece{const_cast<char*>(bytes.data()), bytes.size()};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    return SendMessage(descriptor, message, sent);
}

int SendDescriptor(int descriptor, int passed)
{
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof passed)] = {};
    msghdr message{};
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof passed);
    std::memcpy(CMSG_DATA(header), &passed, sizeof passed);
    ssize_t sent = 0;
    return SendMessage(descriptor, message, sent);
}

int WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written =
            nxSystemCall::RetryInterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (written <= 0)
            return written < 0 ? errno : ENOSPC;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}
}  // namespace

int nxLocalSocket::Connect(const std::string& path, Type type)
{
    Close();
    const int error = _Open(path, SOCK_DGRAM);
    if (error != EPROTOTYPE || type == Type::Datagram)
        return error;
    return _Open(path, SOCK_STREAM);
}

int nxLocalSocket::_Open(const std::string& path, int type)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.find('\0') != std::string::npos)
        return ENOENT;
    if (path.size() >= sizeof address.sun_path)
        return ENAMETOOLONG;
    std::memcpy(address.sun_path, path.data(), path.size());
    nxDescriptor fresh(socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!fresh.IsOpen())
        return errno;
    const auto* const general = reinterpret_cast<const sockaddr*>(&address);
    if (nxSystemCall::RetryInterrupted([&] { return connect(fresh.Get(), general, sizeof address); }) != 0)
        return errno;
    _descriptor = std::move(fresh);
    _isStream = type == SOCK_STREAM;
    return 0;
}

int nxLocalSocket::Send(std::string_view message)
{
    struct stat status = {};
    if (!IsConnected())
        return ENOTCONN;
    if (const int error = _descriptor.Check(status); error != 0)
        return error;
    if (_isStream)
        return _SendInStream(message);
    ssize_t sent = 0;
    return SendBytes(_descriptor.Get(), message, sent);
}

// The NUL counts as a byte of the message.
int nxLocalSocket::_SendInStream(std::string_view message)
{
    while (_taken <= message.size())
    {
        const std::string_view rest = _taken < message.size() ? message.substr(_taken) : std::string_view("\0", 1);
        ssize_t sent = 0;
        if (const int error = SendBytes(_descriptor.Get(), rest, sent); error != 0)
            return error;
        _taken += static_cast<std::size_t>(sent);
    }
    _taken = 0;
    return 0;
}

int nxLocalSocket::SendAsFile(std::string_view message)
{
    struct stat status = {};
    if (!IsConnected())
        return ENOTCONN;
    if (const int error = _descriptor.Check(status); error != 0)
        return error;
    const nxDescriptor file(memfd_create("nxlog", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file.IsOpen())
        return errno;
    if (const int error = WriteAll(file.Get(), message); error != 0)
        return error;
    // Services read such a file only if nobody can change it meanwhile.
    if (fcntl(file.Get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) != 0)
        return errno;
    return SendDescriptor(_descriptor.Get(), file.Get());
}

void nxLocalSocket::WaitForRoom(int milliseconds) const
{
    pollfd connection{_descriptor.Get(), POLLOUT, 0};
    static_cast<void>(poll(&connection, 1, milliseconds));
}

void nxLocalSocket::Close()
{
    _descriptor.Close();
    _taken = 0;
}
