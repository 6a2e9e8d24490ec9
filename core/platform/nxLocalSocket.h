// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXLOCALSOCKET_H
#define CORE_PLATFORM_NXLOCALSOCKET_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/platform/nxDescriptor.h"

/// A connection to a service of this machine, by the name that its socket has in the file system. Messages go out; none is
/// received.
///
/// - No operation but WaitForRoom() waits. The descriptor is none of the standard ones, is not inherited by programs that
///   the process starts, and is left alone when other code of the process has closed it.
/// - Errors: the system's numbers. No operation raises a signal.
/// - Threads: like an int. In a forked child Close() leaves the parent's connection as it is.
class nxLocalSocket
{
public:
    /// The services that Connect() accepts.
    enum class Type
    {
        Datagram,         ///< Each message is a datagram.
        DatagramOrStream  ///< As the service has it. In a stream each message ends in a NUL.
    };

    /// @param path the name of the service's socket. @return 0 or the error number; ENAMETOOLONG for a path that no socket
    ///        can have.
    [[nodiscard]] int Connect(const std::string& path, Type type);
    bool IsConnected() const { return _descriptor.IsOpen(); }

    /// Sends one message. A message of which a stream took the beginning is sent again by the caller, who gets EAGAIN, and
    /// goes on where it was.
    /// @return 0; EAGAIN when the service has no room; EMSGSIZE when the message is too long for a datagram; another error
    ///         number when the connection is of no use any more.
    [[nodiscard]] int Send(std::string_view message);

    /// Sends a descriptor of a sealed file in memory that holds the message.
    /// @return as Send(); the number of another call that failed, too.
    [[nodiscard]] int SendAsFile(std::string_view message);

    /// Waits until the service has room, or the connection is of no use any more.
    void WaitForRoom(int milliseconds) const;

    void Close();

private:
    int _Open(const std::string& path, int type);
    int _SendInStream(std::string_view message);

    nxDescriptor _descriptor;
    bool _isStream = false;
    std::size_t _taken = 0;  // bytes of the message at hand that the stream took
};

#endif
