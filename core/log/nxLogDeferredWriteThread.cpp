#include "core/log/nxLogDeferredWriteThread.h"

#include "core/log/internal/nxLogWriter.h"
#include "core/platform/nxServiceThread.h"

nxErrorEnum nxLogDeferredWriteThread::_Start(const nxServiceThread& service)
{
    nxErrorEnum error = _Create(&service);
    if (error.IsOK() || error == NX_ERR_THR_RESOURCE)
        return error;
    // Processors that are taken away since, a priority that is not allowed, more thread-local data than the stack
    // holds.
    error = _Create(nullptr);
    if (error.IsOK())
        _Apply(service);
    return error;
}

void nxLogDeferredWriteThread::_Apply(const nxServiceThread& service) noexcept
{
    if (_started)
        service.Apply(_handle);
}

nxErrorEnum nxLogDeferredWriteThread::Run()
{
    nxLogWriter::GetInstance()._Run();
    return nxErrorEnum();
}
