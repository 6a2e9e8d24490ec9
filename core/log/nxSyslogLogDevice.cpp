// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxSyslogLogDevice.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogIdentity.h"
#include "core/log/internal/nxLogSocketTarget.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogManager.h"
#include "core/platform/nxOneInstance.h"
#include "core/platform/nxProcess.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::string_view syslogCutMark = "... [cut]";
constexpr std::size_t longestTag = 48;

// "Mar  5 09:07:03", local time; a moment that has no text has none here.
std::string GetSyslogTime(const nxTimeStamp& time)
{
    char text[nxTimeStamp::TextSize] = "";
    if (time.GetAsStringFast(text, sizeof text) == 0)
        return {};
    const std::string_view stamp(text);  // "05Mar24 09:07:03.123.456"
    std::string result(stamp.substr(2, 3));
    result.append(1, ' ').append(1, stamp[0] == '0' ? ' ' : stamp[0]).append(1, stamp[1]);
    return result.append(1, ' ').append(stamp.substr(8, 8)).append(1, ' ');
}

std::string MakeTag(std::string identifier)
{
    identifier.resize(std::min(identifier.size(), longestTag));
    for (char& c : identifier)
        if (c <= ' ' || c > '~' || c == '[' || c == ']' || c == ':')
            c = '_';
    return identifier;
}

class SyslogTarget final : public nxLogSocketTarget
{
public:
    SyslogTarget(std::string path, std::string identifier, unsigned facility,
                 std::shared_ptr<const std::atomic<bool>> isVerbose)
        : nxLogSocketTarget(std::move(path), nxLocalSocket::Type::DatagramOrStream),
          _identifier(std::move(identifier)),
          _facility(facility <= nxSyslogLogDevice::LargestFacility ? facility : nxSyslogLogDevice::User),
          _isVerbose(std::move(isVerbose))
    {
    }

private:
    void _Encode(std::string& message, const nxLog& record, const nxLogLosses*) override
    {
        const unsigned severity = nxLogIdentity::GetSeverity(record.GetLogLevel().GetEnumValue());
        message.append("<").append(std::to_string(8 * _facility + severity)).append(">");
        message.append(GetSyslogTime(record.GetTimeStamp()));
        message.append(MakeTag(nxLogIdentity::GetIdentifier(_identifier)));
        message.append("[").append(std::to_string(nxProcess::GetID())).append("]: ");
        const auto form =
            _isVerbose->load(std::memory_order_relaxed) ? nxLogLineStyle::Full : nxLogLineStyle::LevelAndText;
        nxLogLine::Append(message, record, {form, false});
        message.pop_back();  // the line's end
        if (message.size() <= nxSyslogLogDevice::MaximumSize)
            return;
        const std::size_t limit = nxSyslogLogDevice::MaximumSize - syslogCutMark.size();
        message.resize(nxPrintableText::Cut(message, limit).size());
        message.append(syslogCutMark);
    }
    int _SendLong(nxLocalSocket&, const std::string&) override { return EMSGSIZE; }

    const std::string _identifier;
    const unsigned _facility;
    const std::shared_ptr<const std::atomic<bool>> _isVerbose;  // relaxed, see the device
};

class SyslogOfProcess final : public nxSyslogLogDevice
{
public:
    SyslogOfProcess() : nxSyslogLogDevice(_FindSocket()) { nxLogManager::SetDeviceName(this, "syslog"); }

private:
    static std::string _FindSocket()
    {
        const nxLogDeviceSettings settings = nxLogDeviceSettings::Read();
        return settings.syslog.empty() ? DefaultSocket : settings.syslog;
    }
};
}  // namespace

nxSyslogLogDevice::nxSyslogLogDevice(const std::string& socket, const std::string& identifier, unsigned facility)
    : nxSyslogLogDevice(socket, identifier, facility, std::make_shared<std::atomic<bool>>(true))
{
}

nxSyslogLogDevice::nxSyslogLogDevice(const std::string& socket, const std::string& identifier, unsigned facility,
                                     const std::shared_ptr<std::atomic<bool>>& isVerbose)
    : nxSeparateLogDevice(std::make_unique<SyslogTarget>(socket, identifier, facility, isVerbose)),
      _isVerbose(isVerbose)
{
}

nxSyslogLogDevice::~nxSyslogLogDevice() { nxLogManager::GetInstance().UnregisterLogDevice(this); }

void nxSyslogLogDevice::Write(const nxLog& record)
{
    // The device's thread may outlive the device, and so may this flag.
    _isVerbose->store(IsVerboseOutput(), std::memory_order_relaxed);
    nxSeparateLogDevice::Write(record);
}

nxSyslogLogDevice& nxSyslogLogDevice::GetInstance()
{
    static constinit nxOneInstance<SyslogOfProcess> device;
    return device.Get();
}
