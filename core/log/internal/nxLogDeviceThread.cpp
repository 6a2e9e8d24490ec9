// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceThread.h"

#include <atomic>
#include <memory>
#include <utility>

#include "core/platform/nxServiceThread.h"

nxLogDeviceThread* nxLogDeviceThread::Start(const std::function<void()>& body) noexcept
try
{
    std::unique_ptr<nxLogDeviceThread> thread(new nxLogDeviceThread(body));
    return thread->_Start() ? thread.release() : nullptr;
}
catch (...)
{
    return nullptr;
}

bool nxLogDeviceThread::_Start()
{
    const nxServiceThread service;
    const nxErrorEnum error = _Create(&service);
    // The system may have taken processors away, or need a larger stack for thread-local data.
    return error.IsOK() || (error != NX_ERR_THR_RESOURCE && _Create(nullptr).IsOK());
}

nxErrorEnum nxLogDeviceThread::Run()
{
    const std::function<void()> body = std::move(_body);
    body();
    return nxErrorEnum();
}

void nxLogDeviceThread::Abandon(nxLogDeviceThread* thread) noexcept
{
    // A list that no thread follows, so relaxed; leak checkers find what is in it.
    static constinit std::atomic<nxLogDeviceThread*> abandoned{nullptr};
    if (thread == nullptr)
        return;
    thread->_next = abandoned.load(std::memory_order_relaxed);
    while (!abandoned.compare_exchange_weak(thread->_next, thread, std::memory_order_relaxed))
    {
    }
}
