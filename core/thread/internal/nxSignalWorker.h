// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXSIGNALWORKER_H
#define CORE_THREAD_INTERNAL_NXSIGNALWORKER_H

#include <functional>
#include <map>
#include <optional>

#include "core/platform/nxSignals.h"
#include "core/thread/nxBlockedSignals.h"
#include "core/thread/nxMutex.h"
#include "core/thread/nxThread.h"
#include "core/thread/nxThreadOptions.h"

/// The thread of an nxSignalThread, whose header says what its operations do.
///
/// Invariant: handlers and settings change only while the thread is not started, and need no lock.
class nxSignalWorker final : public nxThread
{
public:
    explicit nxSignalWorker(const nxBlockedSignals& signals) : _signals(signals) {}

    void SetHandler(int signal, std::function<void()> handler);
    void EndAtSecondSignal();
    [[nodiscard]] nxErrorEnum Start(nxThreadOptions options);
    void Stop();

private:
    bool _IsStarted() const { return _process != 0; }
    nxErrorEnum Run() override;
    nxSignals::Set _Begin();
    nxSignals::Set _GetWaited();
    void _Handle(int signal);
    void _AcceptNextEnd();

    const nxBlockedSignals& _signals;
    std::map<int, std::function<void()>> _handlers;
    bool _isMistaken = false;
    bool _hasIgnored = false;
    bool _endsAtSecond = false;
    unsigned _process = 0;  // that has started the thread; 0 if it is not started

    nxMutex _mutex;
    std::optional<nxNative::Thread> _thread NX_GUARDED_BY(_mutex);  // while it waits for signals
    nxSignals::Set _waited NX_GUARDED_BY(_mutex) = 0;
    bool _isStopping NX_GUARDED_BY(_mutex) = false;
};

#endif
