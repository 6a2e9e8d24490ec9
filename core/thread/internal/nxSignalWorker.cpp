// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxSignalWorker.h"

#include <exception>
#include <utility>
#include <vector>

#include "core/platform/nxProcess.h"
#include "core/thread/internal/nxThreadReport.h"
#include "core/thread/nxMutexGuard.h"

void nxSignalWorker::SetHandler(int signal, std::function<void()> handler)
{
    if (_IsStarted())
        return;
    if (handler == nullptr || !(_signals.Contains(signal) || _signals.IsIgnored(signal)))
        _isMistaken = true;
    else if (_signals.Contains(signal))
        _handlers[signal] = std::move(handler);
    else
        _hasIgnored = true;
}

void nxSignalWorker::EndAtSecondSignal()
{
    if (!_IsStarted())
        _endsAtSecond = true;
}

nxErrorEnum nxSignalWorker::Start(nxThreadOptions options)
{
    if (_IsStarted())
        return nxErrorEnum(NX_ERR_THR_ALREADY_STARTED);
    if (const nxErrorEnum error = _signals.GetError(); !error.IsOK())
        return error;
    if (_isMistaken || (_handlers.empty() && !_hasIgnored))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (options.name.empty())
        options.name = "signals";
    const std::vector<unsigned> openThreads = _signals.FindOpenThreads();
    const nxErrorEnum error = Create(options);
    if (!error.IsOK())
        return error;
    _process = nxProcess::GetID();
    for (const unsigned thread : openThreads)
        nxThreadReport::SignalsNotBlocked(thread);
    return error;
}

void nxSignalWorker::Stop()
{
    // A forked child has no thread to wait for, and the lock may be held by a thread of the parent.
    if (!_IsStarted() || _process != nxProcess::GetID())
        return;
    {
        const nxMutexGuard guard(_mutex);
        _isStopping = true;
        if (_thread.has_value() && _waited != 0)
            nxSignals::Wake(*_thread, _waited, this);
    }
    static_cast<void>(Wait());
    const nxMutexGuard guard(_mutex);
    _isStopping = false;
    _process = 0;
}

// Stop() can wake the thread from here on. Returns the signals to wait for.
nxSignals::Set nxSignalWorker::_Begin()
{
    nxSignals::Set signals = 0;
    for (const auto& [signal, handler] : _handlers)
        signals |= nxSignals::GetSet(signal);
    nxSignals::Block(signals);
    const nxMutexGuard guard(_mutex);
    _thread = pthread_self();
    _waited = signals;
    return signals;
}

// Empty when the thread is to end.
nxSignals::Set nxSignalWorker::_GetWaited()
{
    const nxMutexGuard guard(_mutex);
    if (!_isStopping && _waited != 0)
        return _waited;
    _thread.reset();
    return 0;
}

nxErrorEnum nxSignalWorker::Run()
{
    const nxSignals::Set all = _Begin();
    while (const nxSignals::Set waited = _GetWaited())
        if (const int signal = nxSignals::Wait(waited, this); signal != 0)
            _Handle(signal);
    while (const int signal = nxSignals::Take(all, this))
        _Handle(signal);
    return nxErrorEnum();
}

void nxSignalWorker::_Handle(int signal)
{
    if (_endsAtSecond && (signal == SIGTERM || signal == SIGINT))
        _AcceptNextEnd();
    try
    {
        _handlers.at(signal)();
    }
    catch (const std::exception& exception)
    {
        nxThreadReport::ExceptionLeftHandler(signal, exception.what());
    }
    catch (...)
    {
        // No exception: the thread is being cancelled or has called pthread_exit, and the unwinding must go on.
        if (std::current_exception() == nullptr)
            throw;
        nxThreadReport::ExceptionLeftHandler(signal, "of unknown type");
    }
}

void nxSignalWorker::_AcceptNextEnd()
{
    const nxSignals::Set ends = nxSignals::GetSet(SIGTERM) | nxSignals::GetSet(SIGINT);
    {
        const nxMutexGuard guard(_mutex);
        _waited &= ~ends;
    }
    nxSignals::Unblock(ends);
}
