// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogDeferredWriteThread.h"

#include "core/platform/nxServiceThread.h"

nxErrorEnum nxLogDeferredWriteThread::_Start(const nxServiceThread& service)
{
    nxErrorEnum error = _Create(&service);
    if (error.IsOK() || error == NX_ERR_THR_RESOURCE)
        return error;
    // The system may have taken processors away, not allow the priority, or need a larger stack for thread-local data.
    error = _Create(nullptr);
    if (error.IsOK())
        _Apply(service);
    return error;
}

void nxLogDeferredWriteThread::_Apply(const nxServiceThread& service) noexcept
{
    if (_state != State::NotStarted)
        service.Apply(_handle);
}
