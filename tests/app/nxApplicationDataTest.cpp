// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxApplicationData.h"

#include <arpa/inet.h>

#include <cerrno>
#include <ctime>

#include "core/app/nxCmdLineArgs.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
TEST(nxApplicationData, SettingsKeepWhatTheyAreGiven)
{
    using TextSetting = std::pair<std::string (*)(), void (*)(const std::string&)>;
    const TextSetting settings[] = {
        {&nxApplicationData::GetApplicationName, &nxApplicationData::SetApplicationName},
        {&nxApplicationData::GetApplicationInstanceName, &nxApplicationData::SetApplicationInstanceName},
        {&nxApplicationData::GetUserName, &nxApplicationData::SetUserName},
        {&nxApplicationData::GetLocation, &nxApplicationData::SetLocation},
        {&nxApplicationData::GetDaemonHostName, &nxApplicationData::SetDaemonHostName},
    };
    std::string all;
    for (std::size_t i = 0; i < std::size(settings); ++i)
        settings[i].second("text " + std::to_string(i) + ';');
    for (const auto& [get, set] : settings)
        all += get();
    EXPECT_EQ(all, "text 0;text 1;text 2;text 3;text 4;");

    nxApplicationData::SetMifidEnabled(true);
    EXPECT_TRUE(nxApplicationData::GetMifidEnabled());
    nxServerCapabilityBitMask capabilities;
    capabilities.SetNull();
    nxApplicationData::SetServerCapabilities(capabilities);
    EXPECT_TRUE(nxApplicationData::GetServerCapabilities().IsNull());
    EXPECT_EQ(nxApplicationData::GetAPIConnectionType(), nxAPIConnectionTypeEnum());
}

TEST(nxApplicationData, ThePlatformsFactsAreLiveAndHaveDefaults)
{
    char host[256] = "";
    ASSERT_EQ(::gethostname(host, sizeof(host) - 1), 0);
    EXPECT_EQ(nxApplicationData::GetHostName(), host);

    const std::string address = nxApplicationData::GetIPAddress();
    unsigned char binary[16];
    EXPECT_TRUE(::inet_pton(AF_INET, address.c_str(), binary) == 1 ||
                ::inet_pton(AF_INET6, address.c_str(), binary) == 1)
        << address;

    EXPECT_EQ(nxApplicationData::GetProcessID(), static_cast<unsigned>(::getpid()));
    const nxDateTime start = nxApplicationData::GetStartTime();
    EXPECT_TRUE(start.IsValid());
    EXPECT_LE(start, nxDateTime(static_cast<long long>(std::time(nullptr)) + 1, 0));
    EXPECT_GE(start, nxDateTime(static_cast<long long>(std::time(nullptr)) - 24 * 3600, 0));

    const nxSystemCallFault noName("gethostname", ENAMETOOLONG);
    EXPECT_EQ(nxApplicationData::GetHostName(), "localhost");
    const nxSystemCallFault noInterfaces("getifaddrs", ENOSYS);
    EXPECT_EQ(nxApplicationData::GetIPAddress(), "127.0.0.1");
}

TEST(nxApplicationData, WithoutAProcessFileTheStartIsTheFirstQuestion)
{
    // In a child, because the process keeps the answer.
    EXPECT_TRUE(nxInChild(
        []
        {
            const nxDateTime before(std::time(nullptr), 0);
            const nxSystemCallFault noFile("open", EMFILE);
            EXPECT_GE(nxApplicationData::GetStartTime(), before);
            EXPECT_EQ(noFile.GetHits(), 1U);
        }));
}

TEST(nxApplicationData, AForkedChildIsAProcessOfItsOwn)
{
    const unsigned parent = nxApplicationData::GetProcessID();
    const nxDateTime parentStart = nxApplicationData::GetStartTime();
    ::usleep(50'000);  // more than the resolution of start times, which is a clock tick
    EXPECT_TRUE(nxInChild(
        [&]
        {
            EXPECT_EQ(nxApplicationData::GetProcessID(), static_cast<unsigned>(::getpid()));
            EXPECT_NE(nxApplicationData::GetProcessID(), parent);
            EXPECT_GE(nxApplicationData::GetStartTime(), parentStart);
        }));
    // The thread that held a mutex at the moment of the fork does not exist in the child. Each mutex has a thread of its
    // own, because a fork that waits for one mutex gives the thread time to release another. The texts are too short for
    // an allocator, whose locks the address sanitizer does not give back in the child.
    const nxBusyThread naming([] { nxApplicationData::GetApplicationName(); });
    const nxBusyThread locating([] { nxApplicationData::GetLocation(); });
    const nxBusyThread reading([] { nxCmdLineArgs::GetInstance().GetEnvValue("NX_NONE"); });
    for (int i = 0; i < 100 && !HasFailure(); ++i)
        EXPECT_TRUE(nxInChild(
            []
            {
                nxApplicationData::SetApplicationName(nxApplicationData::GetApplicationName() + "x");
                nxApplicationData::SetLocation(nxApplicationData::GetLocation() + "x");
                nxCmdLineArgs::GetInstance().GetEnvValue("NX_NONE");
            }));
}

TEST(nxApplicationData, SecureConnectionIsReadFromTheDaemonSetting)
{
    EXPECT_FALSE(nxApplicationData::GetIsSecureSSLConnection());
    const std::pair<const char*, bool> rows[] = {{"SSL:daemonhost:1234", true},
                                                 {"tcp:x;ssl:y", true},
                                                 {"sSl:", true},
                                                 {"ssl", false},
                                                 {"tcp:daemonhost", false},
                                                 {"", false}};
    for (const auto& [daemon, isSecure] : rows)
    {
        ASSERT_TRUE(nxCmdLineArgs::GetInstance().SetEnvValue("QRX_DAEMON", daemon));
        EXPECT_EQ(nxApplicationData::GetIsSecureSSLConnection(), isSecure) << daemon;
    }
}
}  // namespace
