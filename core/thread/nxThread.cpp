// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxThread.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <memory>
#include <new>

#include "core/platform/nxServiceThread.h"
#include "core/platform/nxThisThread.h"
#include "core/platform/nxThreadAttributes.h"
#include "core/thread/internal/nxThreadReport.h"
#include "core/thread/nxThreadOptions.h"

namespace
{
// What a thread that gets a name is started with. The thread owns it.
struct NamedStart
{
    nxThread* thread;
    std::array<char, nxThisThread::LongestName + 1> name;
};

std::unique_ptr<NamedStart> MakeNamedStart(nxThread& thread, const std::string& name)
{
    std::unique_ptr<NamedStart> start(new (std::nothrow) NamedStart{&thread, {}});
    if (start != nullptr)
        std::copy_n(name.begin(), std::min(name.size(), nxThisThread::LongestName), start->name.begin());
    return start;
}

int PrepareScheduling(nxNative::ThreadAttributes& attributes, const nxThreadOptions& options)
{
    using Queue = nxThreadAttributes::Queue;
    switch (options.scheduling)
    {
        case nxThreadOptions::Scheduling::Inherited:
            return options.priority == 0 ? 0 : EINVAL;
        case nxThreadOptions::Scheduling::Ordinary:
            return nxThreadAttributes::SetScheduling(attributes, Queue::Ordinary, options.priority);
        case nxThreadOptions::Scheduling::RealTimeFirstIn:
            return nxThreadAttributes::SetScheduling(attributes, Queue::RealTimeFirstIn, options.priority);
        case nxThreadOptions::Scheduling::RealTimeRoundRobin:
            return nxThreadAttributes::SetScheduling(attributes, Queue::RealTimeRoundRobin, options.priority);
    }
    return EINVAL;
}

int Prepare(nxNative::ThreadAttributes& attributes, const nxThreadOptions& options)
{
    int result = PrepareScheduling(attributes, options);
    if (result == 0 && !options.processors.empty())
        result = nxThreadAttributes::SetProcessors(attributes, options.processors);
    if (result == 0 && options.stackBytes != 0)
        result = nxThreadAttributes::SetStackBytes(attributes, options.stackBytes);
    return result;
}
}  // namespace

// The attributes are initialised here as well as in Create(), so that the destructor always has something to destroy.
nxThread::nxThread() : _attributes(), _handle(), _state(State::NotStarted) { pthread_attr_init(&_attributes); }

nxThread::~nxThread() { pthread_attr_destroy(&_attributes); }

nxErrorEnum nxThread::Create() { return _Create(nullptr); }

nxErrorEnum nxThread::Create(const nxThreadOptions& options)
{
    if (!_Claim())
        return nxErrorEnum(NX_ERR_THR_ALREADY_STARTED);
    int result = _RenewAttributes();
    if (result == 0)
        result = Prepare(_attributes, options);
    std::unique_ptr<NamedStart> start;
    if (result == 0 && !options.name.empty())
    {
        start = MakeNamedStart(*this, options.name);
        result = start != nullptr ? 0 : EAGAIN;
    }
    result = start != nullptr ? _Launch(result, &nxThread::_NamedThreadProc, start.get())
                              : _Launch(result, &nxThread::_ThreadProc, this);
    if (result == 0)
        static_cast<void>(start.release());
    return result == EINVAL ? nxErrorEnum(NX_ERR_INVALID_PARAMETER) : _StartError(result);
}

// The library's own thread brings its attributes; null means the system's defaults.
nxErrorEnum nxThread::_Create(const nxServiceThread* attributes)
{
    if (!_Claim())
        return nxErrorEnum(NX_ERR_THR_ALREADY_STARTED);
    int result = _RenewAttributes();
    if (result == 0 && attributes != nullptr)
        result = attributes->Prepare(_attributes);
    return _StartError(_Launch(result, &nxThread::_ThreadProc, this));
}

// Counts as started before the thread exists, because Run() may call Wait() at once.
bool nxThread::_Claim()
{
    State expected = State::NotStarted;
    return _state.compare_exchange_strong(expected, State::Started);
}

int nxThread::_RenewAttributes()
{
    pthread_attr_destroy(&_attributes);
    _attributes = nxNative::ThreadAttributes();  // nothing is destroyed twice when the next line fails
    return pthread_attr_init(&_attributes);
}

// Starts the thread unless its preparation has failed with `result` already. Returns the error number of either.
int nxThread::_Launch(int result, void* (*body)(void*), void* argument)
{
    if (result == 0)
        result = pthread_create(&_handle, &_attributes, body, argument);
    if (result != 0)
        _state.store(State::NotStarted);
    return result;
}

nxErrorEnum nxThread::_StartError(int result)
{
    switch (result)
    {
        case 0:
            return nxErrorEnum();
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
    if (_state.load() == State::NotStarted)
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    if (pthread_equal(_handle, pthread_self()) != 0)
        return nxErrorEnum(NX_ERR_THR_DEADLOCK);
    // Of several threads that wait, one joins. A join of a thread that is joined already is undefined.
    State found = State::Started;
    if (!_state.compare_exchange_strong(found, State::Joining))
        return found == State::Joining ? nxErrorEnum(NX_ERR_THR_MISMATCH) : nxErrorEnum(NX_ERR_THR_NOT_RUNNING);

    // Set by a destructor, because a thread may be cancelled while it joins.
    struct Joining
    {
        ~Joining() { state.store(after); }
        std::atomic<State>& state;  // in the default order, as everywhere
        State after = State::Started;
    } joining{_state};
    const int result = pthread_join(_handle, nullptr);
    if (result != 0)
        return result == EDEADLK ? nxErrorEnum(NX_ERR_THR_DEADLOCK) : nxErrorEnum(NX_ERR_THR_MISMATCH);
    joining.after = State::NotStarted;
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

void* nxThread::_NamedThreadProc(void* start)
{
    const std::unique_ptr<NamedStart> owned(static_cast<NamedStart*>(start));
    nxThisThread::SetName(owned->name.data());
    return _ThreadProc(owned->thread);
}
