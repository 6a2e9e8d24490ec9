// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxJournalLogDevice.h"

#include <memory>
#include <utility>

#include "core/log/internal/nxLogIdentity.h"
#include "core/log/internal/nxLogJournalText.h"
#include "core/log/internal/nxLogSocketTarget.h"
#include "core/log/nxLogManager.h"
#include "core/platform/nxOneInstance.h"

namespace
{
class JournalTarget final : public nxLogSocketTarget
{
public:
    JournalTarget(std::string path, std::string identifier)
        : nxLogSocketTarget(std::move(path), nxLocalSocket::Type::Datagram), _identifier(std::move(identifier))
    {
    }

private:
    void _Encode(std::string& message, const nxLog& record, const nxLogLosses* losses) override
    {
        nxLogJournalText::AppendRecord(message, record, nxLogIdentity::GetIdentifier(_identifier), losses);
    }
    int _SendLong(nxLocalSocket& socket, const std::string& message) override { return socket.SendAsFile(message); }

    const std::string _identifier;
};

class JournalOfProcess final : public nxJournalLogDevice
{
public:
    JournalOfProcess() : nxJournalLogDevice(_FindSocket()) { nxLogManager::SetDeviceName(this, "journal"); }

private:
    static std::string _FindSocket()
    {
        const nxLogDeviceSettings settings = nxLogDeviceSettings::Read();
        return settings.journal.empty() ? DefaultSocket : settings.journal;
    }
};
}  // namespace

nxJournalLogDevice::nxJournalLogDevice(const std::string& socket, const std::string& identifier)
    : nxSeparateLogDevice(std::make_unique<JournalTarget>(socket, identifier))
{
}

nxJournalLogDevice::~nxJournalLogDevice() { nxLogManager::GetInstance().UnregisterLogDevice(this); }

nxJournalLogDevice& nxJournalLogDevice::GetInstance()
{
    static constinit nxOneInstance<JournalOfProcess> device;
    return device.Get();
}
