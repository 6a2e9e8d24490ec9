// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFork.h"

#include <cstddef>

#include "core/log/internal/nxLogBackpressure.h"
#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogDeviceQueues.h"
#include "core/log/internal/nxLogLevelFile.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogMerge.h"
#include "core/log/internal/nxLogRingMemory.h"
#include "core/log/internal/nxLogSourceTable.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/internal/nxLogWriterThread.h"
#include "core/platform/nxForkHandlers.h"

namespace
{
// No part of the log is in the middle of a change while the process is copied, but for a round: the child drops it.
void BeforeFork()
{
    nxLogDeviceQueues::BeforeFork();
    nxLogDeviceList::GetInstance().BeforeFork();
    nxLogChannelList::GetInstance().BeforeFork();
    nxLogRingMemory::GetInstance().BeforeFork();
    nxLogDeviceBook::GetInstance().BeforeFork();
    nxLogLevelFile::GetInstance().BeforeFork();
    nxLogLevelState::GetInstance().BeforeFork();
    nxLogSourceTable::GetInstance().BeforeFork();
    nxLogDeviceQueues::LockForFork();
}

void AfterForkInParent()
{
    nxLogSourceTable::GetInstance().AfterForkInParent();
    nxLogLevelState::GetInstance().AfterForkInParent();
    nxLogLevelFile::GetInstance().AfterForkInParent();
    nxLogDeviceBook::GetInstance().AfterForkInParent();
    nxLogRingMemory::GetInstance().AfterForkInParent();
    nxLogChannelList::GetInstance().AfterForkInParent();
    nxLogDeviceList::GetInstance().AfterForkInParent();
    nxLogDeviceQueues::AfterForkInParent();
}

void AfterForkInChild()
{
    nxLogCounters::AfterForkInChild();
    nxLogBell::AfterForkInChild();
    nxLogSourceTable::GetInstance().AfterForkInChild();
    nxLogLevelState::GetInstance().AfterForkInChild();
    nxLogLevelFile::GetInstance().AfterForkInChild();
    nxLogDeviceBook::GetInstance().AfterForkInChild();
    const std::size_t bytesInUse = nxLogChannelList::GetInstance().AfterForkInChild();
    nxLogRingMemory::GetInstance().AfterForkInChild(bytesInUse);
    nxLogBackpressure::AfterForkInChild();
    nxLogMerge::GetInstance().AfterForkInChild();
    nxLogWriter::GetInstance().AfterForkInChild();
    nxLogWriterThread::GetInstance().AfterForkInChild();
    nxLogDeviceList::GetInstance().AfterForkInChild();
    nxLogDeviceQueues::AfterForkInChild();
}
}  // namespace

void nxLogFork::Register() noexcept
{
    static constexpr nxForkHandlers::Functions functions{&BeforeFork, &AfterForkInParent, &AfterForkInChild};
    nxForkHandlers::Register(nxForkHandlers::Rank::Log, functions);
}
