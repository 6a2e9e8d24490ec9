// SPDX-License-Identifier: Apache-2.0
// The devices for the journal and for syslog, with services of the test's own and with the machine's journal.

#include <gmock/gmock.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "core/log/nxJournalLogDevice.h"
#include "core/log/nxLogDeviceSettings.h"
#include "core/log/nxSyslogLogDevice.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
using Fields = std::multimap<std::string, std::string>;

// A journal's own form, as it sends and exports it. Records end with an empty line or with the text.
std::vector<Fields> Parse(const std::string& text)
{
    std::vector<Fields> records(1);
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t end = text.find('\n', at);
        const std::string line = text.substr(at, end - at);
        const std::size_t equals = line.find('=');
        at = end + 1;
        if (line.empty())
            records.emplace_back();
        else if (equals != std::string::npos)
            records.back().emplace(line.substr(0, equals), line.substr(equals + 1));
        else
        {
            std::uint64_t size = 0;
            std::memcpy(&size, text.data() + at, sizeof size);
            records.back().emplace(line, text.substr(at + sizeof size, size));
            at += sizeof size + size + 1;
        }
    }
    if (records.back().empty())
        records.pop_back();
    return records;
}

std::string Get(const Fields& fields, const std::string& name)
{
    EXPECT_EQ(fields.count(name), 1U) << name;
    return fields.count(name) == 1 ? fields.find(name)->second : "";
}

// A service that listens at a path, as long as the object lives.
class Service
{
public:
    explicit Service(const std::string& path, int type = SOCK_DGRAM) : _path(path), _socket(socket(AF_UNIX, type, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        _path.copy(address.sun_path, sizeof address.sun_path - 1);
        const timeval limit{60, 0};
        setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        EXPECT_EQ(bind(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(type == SOCK_STREAM ? listen(_socket, 1) : 0, 0);
    }
    ~Service()
    {
        close(_socket);
        unlink(_path.c_str());
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    // Nobody can send any more; what was sent can be received.
    void Leave() const
    {
        unlink(_path.c_str());
        shutdown(_socket, SHUT_RD);
    }

    int Accept() const { return accept(_socket, nullptr, nullptr); }

    // The next message; of one that is passed as a file, the file's content.
    std::string Receive(int flags = 0) const
    {
        std::string bytes(1 << 18, '\0');
        iovec piece{bytes.data(), bytes.size()};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t size = recvmsg(_socket, &message, flags);
        bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        if (const cmsghdr* const header = CMSG_FIRSTHDR(&message); size == 0 && header != nullptr)
        {
            int file = -1;
            std::memcpy(&file, CMSG_DATA(header), sizeof file);
            EXPECT_EQ(fcntl(file, F_GET_SEALS), F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL);
            bytes = nxReadFile("/proc/self/fd/" + std::to_string(file));
            close(file);
        }
        return bytes;
    }

private:
    const std::string _path;
    const int _socket;
};

class nxLogServiceDevices : public testing::Test
{
protected:
    const nxScratchDirectory _folder;
    const std::string _path = _folder.GetPath() / "service";
};

std::string AllBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}
}  // namespace

TEST_F(nxLogServiceDevices, TheJournalGetsTheFieldsOfEveryRecordWhateverItsBytesAndItsSize)
{
    const Service service(_path);
    nxJournalLogDevice device(_path, "gateway");
    const std::string texts[] = {"plain", "", "two\nlines", "MESSAGE=x\n", AllBytes(), std::string(1 << 20, 'x')};
    for (const std::string& text : texts)
    {
        nxLog record(NX_LOG_LEVEL_ERROR, "feed/session", 88, nxTimeStamp(1'709'629'623, 123'456'789));
        record << text << nxLog::nxLogSourceApplicationDestUserID("desk", nxValueWrapper<unsigned>(7));
        device.Write(record << nxField("order-id", 12U, nxFieldLines::Json)
                            << nxField("price", nxDecimal(101.25, 2), nxFieldLines::Json)
                            << nxField("code_page", text, nxFieldLines::Json));
        const std::vector<Fields> records = Parse(service.Receive());
        ASSERT_EQ(records.size(), 1U);
        EXPECT_EQ(Get(records[0], "MESSAGE"), text);
        const std::tuple<const char*, std::string> fields[] = {{"PRIORITY", "3"},
                                                               {"SYSLOG_IDENTIFIER", "gateway"},
                                                               {"CODE_FILE", "feed/session"},
                                                               {"CODE_LINE", "88"},
                                                               {"NX_TIME", "2024-03-05T09:07:03.123456Z"},
                                                               {"NX_LEVEL", "ERR"},
                                                               {"NX_USER", "7"},
                                                               {"NX_APPLICATION", "desk"},
                                                               {"ORDER_ID", "12"},
                                                               {"PRICE", "101.25"},
                                                               {"F_CODE_PAGE", text}};
        for (const auto& [name, value] : fields)
            EXPECT_EQ(Get(records[0], name), value);
        EXPECT_EQ(records[0].size(), std::size(fields) + 2);  // NX_THREAD and MESSAGE
    }
}

// Absent at first, slow, killed and back: what is delivered and what is told as lost is what was written. The endurance
// script asks for more rounds.
TEST_F(nxLogServiceDevices, AServiceThatWasAwayGetsWhatWasKeptAndIsToldTheRest)
{
    const char* const wanted = std::getenv("NX_TEST_AWAY_ROUNDS");
    nxJournalLogDevice device(_path);
    device.SetMaximumBytes(200'000);
    int written = 0, last = -1;
    std::uint64_t delivered = 0, told = 0;
    const auto write = [&]
    {
        nxLog record(NX_LOG_LEVEL_INFO, "", 0, nxTimeStamp());
        for (const int end = written + 2'000; written < end; ++written)
            device.Write(nxLog(record) << written);
    };
    const auto take = [&](const std::string& text)
    {
        const std::vector<Fields> records = Parse(text);
        ASSERT_EQ(records.size(), 1U);
        if (records[0].count("NX_LOST") != 0)
        {
            told += std::stoull(Get(records[0], "NX_LOST"));
            return;
        }
        ++delivered;
        EXPECT_LT(last, std::stoi(Get(records[0], "MESSAGE")));
        last = std::stoi(Get(records[0], "MESSAGE"));
    };
    for (int round = wanted != nullptr ? std::atoi(wanted) : 1; round > 0; --round)
    {
        write();  // nobody is there
        Service service(_path);
        take(service.Receive());
        nxJoinedThread slow(write);
        EXPECT_TRUE(nxInChild([&] { EXPECT_EQ(device.GetWaitingRecords(), 0U); }));
        for (int count = 0; count < 100; ++count)
            take(service.Receive());
        service.Leave();
        for (std::string text; !(text = service.Receive(MSG_DONTWAIT)).empty();)
            take(text);
    }
    EXPECT_GT(device.GetLostRecords(), 0U);
    const Service service(_path);
    while (delivered + told < static_cast<std::uint64_t>(written) && !HasFailure())
        take(service.Receive());
    EXPECT_EQ(delivered + told, static_cast<std::uint64_t>(written));
    EXPECT_EQ(told, device.GetLostRecords());
}

TEST_F(nxLogServiceDevices, SyslogGetsLinesByDatagramsOrInAStream)
{
    const nxZoneOfProcess zone("UTC");
    const std::string head = "<131>Mar  5 09:07:03 my_desk[" + std::to_string(getpid()) + "]: ";
    for (const int type : {SOCK_DGRAM, SOCK_STREAM})
    {
        const Service service(_path, type);
        nxSyslogLogDevice device(_path, "my desk", nxSyslogLogDevice::Local0);
        device.SetVerboseOutput(false);
        nxLog record(NX_LOG_LEVEL_ERROR, "feed/session", 88, nxTimeStamp(1'709'629'623, 0));
        device.Write(nxLog(record) << "a\nb");
        device.Write(nxLog(record) << std::string(100'000, 'x'));
        std::string text;
        if (type == SOCK_DGRAM)
        {
            text = service.Receive() + '\0';
            text += service.Receive() + '\0';
        }
        else
        {
            const int connection = service.Accept();
            for (char c = 0; std::count(text.begin(), text.end(), '\0') < 2 && read(connection, &c, 1) == 1;)
                text += c;
            close(connection);
        }
        const std::string first = head + "[ERR] a\\x0Ab";
        EXPECT_EQ(text.substr(0, first.size() + 1), first + '\0');
        EXPECT_EQ(text.size(), first.size() + 1 + nxSyslogLogDevice::MaximumSize + 1);
        EXPECT_EQ(text.substr(text.size() - 11), "x... [cut]" + std::string(1, '\0'));
    }
}

// In name spaces of the test's own, so that nothing reaches the machine's journal.
TEST_F(nxLogServiceDevices, TheMachinesJournalShowsWhatItWasGiven)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    const char* const daemon = "/lib/systemd/systemd-journald";
    if (access(daemon, X_OK) != 0 || std::system("command -v journalctl >/dev/null") != 0)
        GTEST_SKIP() << "no systemd-journald and journalctl here";
    nxStage stage;
    nxChildProcess child(
        [&]
        {
            if (unshare(CLONE_NEWNS) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0 ||
                mount("none", "/run", "tmpfs", 0, nullptr) != 0)
                return;
            std::filesystem::create_directories("/run/systemd/journald.conf.d");
            nxWriteFile("/run/systemd/journald.conf.d/test.conf",
                        "[Journal]\nStorage=volatile\nReadKMsg=no\nAudit=no\nForwardToSyslog=no\n");
            const pid_t journal = fork();
            if (journal == 0)
                _exit(execl(daemon, daemon, nullptr));
            const auto listens = [] { return access("/run/systemd/journal/dev-log", F_OK) == 0; };
            if (!nxEventually(listens))
                return;
            stage.Reach(1);
            setenv("NX_LOG_TO_JOURNAL", "yes", 1);
            setenv("NX_LOG_TO_SYSLOG", "/run/systemd/journal/dev-log", 1);
            nxLog record(NX_LOG_LEVEL_WARNING, "feed/session", 88, nxTimeStamp());
            nxJournalLogDevice::GetInstance().Write(nxLog(record) << AllBytes());
            nxJournalLogDevice::GetInstance().Write(nxLog(record) << std::string(1 << 20, 'x'));
            nxSyslogLogDevice::GetInstance().Write(nxLog(record) << "by syslog");
            const auto read = []
            {
                std::system(
                    "journalctl -D /run/log/journal -o export _TRANSPORT=journal CODE_LINE=88 + PRIORITY=4 "
                    "_TRANSPORT=syslog > /run/out 2>/dev/null");
                return Parse(nxReadFile("/run/out"));
            };
            EXPECT_TRUE(nxEventually([&] { return read().size() == 3; }));
            std::vector<std::string> messages;
            for (const Fields& fields : read())
                messages.push_back(Get(fields, "MESSAGE"));
            EXPECT_THAT(messages, testing::UnorderedElementsAre(AllBytes(), std::string(1 << 20, 'x'),
                                                                testing::HasSubstr("by syslog [feed/session:88]")));
            kill(journal, SIGKILL);
        });
    EXPECT_TRUE(child.Succeeds());
    if (stage.Get() == 0)
        GTEST_SKIP() << "a journal cannot be started here";
}
