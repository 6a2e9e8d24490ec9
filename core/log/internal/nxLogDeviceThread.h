// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICETHREAD_H
#define CORE_LOG_INTERNAL_NXLOGDEVICETHREAD_H

#include <functional>

#include "core/thread/nxThread.h"

/// The thread of a device that has one of its own. It runs with ordinary scheduling on the processors that the process had
/// when the library was loaded, and blocks all signals but those of faults and profilers. Its stack has 256 KiB.
///
/// Invariant: what its function holds lives until the thread ends, and no longer.
class nxLogDeviceThread final : public nxThread
{
public:
    /// @return a thread that runs @p body, which the caller owns; null when there can be none.
    static nxLogDeviceThread* Start(const std::function<void()>& body) noexcept;

    nxErrorEnum Run() override;

    /// Forgets a thread that is in the middle of Run(), or that a fork left behind; null is none. Leak checkers find it.
    static void Abandon(nxLogDeviceThread* thread) noexcept;

private:
    explicit nxLogDeviceThread(const std::function<void()>& body) : _body(body) {}
    bool _Start();

    std::function<void()> _body;
    nxLogDeviceThread* _next = nullptr;  // among those that were abandoned
};

#endif
