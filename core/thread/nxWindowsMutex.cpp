// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxWindowsMutex.h"

#include "core/thread/internal/nxNamedHandle.h"

nxWindowsMutex::nxWindowsMutex(const std::string& name) : _mutex(nxNamedHandle::OpenMutex(name)) {}

nxWindowsMutex::~nxWindowsMutex() = default;

void nxWindowsMutex::_LockSlowly(int result) { _mutex->FinishLock(result); }
