#include "core/log/nxLogDevice.h"

#include "core/log/nxLogManager.h"

// A safety net: what the derived class had is gone by now, but at least nobody finds a dangling pointer later.
nxLogDevice::~nxLogDevice() { nxLogManager::GetInstance().UnregisterLogDevice(this); }
