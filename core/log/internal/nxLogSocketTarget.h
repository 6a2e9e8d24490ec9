// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGSOCKETTARGET_H
#define CORE_LOG_INTERNAL_NXLOGSOCKETTARGET_H

#include <string>

#include "core/log/internal/nxLogTarget.h"
#include "core/platform/nxLocalSocket.h"

/// A log service of this machine as a target: each record is one message to its socket.
///
/// Invariant: a message that the service did not take is kept, and sent as it is when there is room or the service is back.
/// The service is looked for again whenever its socket is of no use any more.
///
/// Errors: the error stream is told that the service is away, once until it is back.
class nxLogSocketTarget : public nxLogTarget
{
public:
    nxLogSocketTarget(std::string path, nxLocalSocket::Type type);

    Outcome WriteLines(const nxLogLineBatch& lines) noexcept final;
    void WaitForRoom() const noexcept final;
    void Destroy() noexcept final;
    void AfterForkInChild(bool isWhole) noexcept final;

protected:
    /// Makes the message of a record. May throw std::bad_alloc; the record is lost then.
    virtual void _Encode(std::string& message, const nxLog& record, const nxLogLosses* losses) = 0;
    /// Sends a message that is too long for a datagram. @return as nxLocalSocket::Send().
    virtual int _SendLong(nxLocalSocket& socket, const std::string& message) = 0;

private:
    Outcome _Write(const nxLog& record, const nxLogLosses* losses) noexcept final;
    int _Connect();
    int _Send();
    void _TellAway(int error);

    const std::string _path;
    const nxLocalSocket::Type _type;
    nxLocalSocket _socket;
    std::string _message;
    bool _hasMessage = false;  // that the service did not take
    bool _isAwayTold = false;
};

#endif
