// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxSignalThread.h"

#include <utility>

#include "core/thread/internal/nxSignalWorker.h"

nxSignalThread::nxSignalThread(const nxBlockedSignals& signals) : _worker(std::make_unique<nxSignalWorker>(signals)) {}

nxSignalThread::~nxSignalThread() { Stop(); }

void nxSignalThread::SetHandler(int signal, std::function<void()> handler)
{
    _worker->SetHandler(signal, std::move(handler));
}

void nxSignalThread::EndAtSecondSignal() { _worker->EndAtSecondSignal(); }

nxErrorEnum nxSignalThread::Start(const nxThreadOptions& options) { return _worker->Start(options); }

void nxSignalThread::Stop() { _worker->Stop(); }
