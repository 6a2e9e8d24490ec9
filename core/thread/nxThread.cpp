#include "core/thread/nxThread.h"

#include <cerrno>
#include <exception>

#include "core/platform/nxServiceThread.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/internal/nxThreadReport.h"

// The attributes are initialised here as well as in Create(), so that the destructor always has something to destroy.
nxThread::nxThread() : _attributes(), _handle(), _started(false) { pthread_attr_init(&_attributes); }

nxThread::~nxThread() { pthread_attr_destroy(&_attributes); }

nxErrorEnum nxThread::Create() { return _Create(nullptr); }

// The library's own thread brings its attributes; null means the system's defaults.
nxErrorEnum nxThread::_Create(const nxServiceThread* attributes)
{
    // Set before the thread exists, because Run() may call Wait() at once.
    if (_started.exchange(true))
        return nxErrorEnum(NX_ERR_THR_ALREADY_STARTED);

    pthread_attr_destroy(&_attributes);
    int result = pthread_attr_init(&_attributes);
    if (result == 0 && attributes != nullptr)
        result = attributes->Prepare(_attributes);
    if (result == 0)
        result = pthread_create(&_handle, &_attributes, &nxThread::_ThreadProc, this);
    if (result == 0)
        return nxErrorEnum();

    _started = false;
    switch (result)
    {
        case EAGAIN:
            return nxErrorEnum(NX_ERR_THR_RESOURCE);
        case EPERM:
            return nxErrorEnum(NX_ERR_THR_PERMISSION);
        default:
            return nxErrorEnum(NX_ERR_THR_MISMATCH);
    }
}

nxErrorEnum nxThread::Wait()
{
    if (!_started)
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    const int result = pthread_equal(_handle, pthread_self()) != 0 ? EDEADLK : pthread_join(_handle, nullptr);
    if (result != 0)
        return result == EDEADLK ? nxErrorEnum(NX_ERR_THR_DEADLOCK) : nxErrorEnum(NX_ERR_THR_MISMATCH);
    _started = false;
    return nxErrorEnum();
}

void nxThread::Sleep(unsigned microseconds) { nxThisThread::SleepMilliseconds(microseconds / 1000); }

std::string nxThread::GetThreadIDAsString() { return std::to_string(nxThisThread::GetID()); }

void* nxThread::_ThreadProc(void* self)
{
    try
    {
        static_cast<void>(static_cast<nxThread*>(self)->Run());
    }
    catch (const std::exception& exception)
    {
        nxThreadReport::ExceptionLeftRun(exception.what());
    }
    catch (...)
    {
        // No exception: the thread is being cancelled or has called pthread_exit, and the unwinding must go on.
        if (std::current_exception() == nullptr)
            throw;
        nxThreadReport::ExceptionLeftRun("of unknown type");
    }
    return nullptr;
}
