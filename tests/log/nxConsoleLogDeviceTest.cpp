// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxConsoleLogDevice.h"

#include <sys/socket.h>
#include <algorithm>

#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogSetUp.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
// A small pipe in the place of standard output, which does not wait for its reader.
class OutputPipe
{
public:
    OutputPipe() : OutputPipe(MakePipe()) {}
    ~OutputPipe() { close(_reading); }

    // What has been written so far.
    std::string Take() const
    {
        std::string text;
        char block[4'096];
        for (ssize_t size; (size = read(_reading, block, sizeof block)) > 0;)
            text.append(block, static_cast<std::size_t>(size));
        return text;
    }

private:
    struct Ends
    {
        int ends[2];
    };
    static Ends MakePipe()
    {
        Ends made{};
        EXPECT_EQ(pipe2(made.ends, O_CLOEXEC | O_NONBLOCK), 0);
        fcntl(made.ends[1], F_SETPIPE_SZ, 4'096);
        return made;
    }
    explicit OutputPipe(Ends made) : _reading(made.ends[0]), _output(STDOUT_FILENO, made.ends[1]) {}

    int _reading;
    nxRedirected _output;
};

nxLog Record(const std::string& text)
{
    nxLog record(NX_LOG_LEVEL_WARNING, "tests/con\nsole", 12, nxTimeStamp(1'709'629'623, 123'456'789));
    record << text;
    return record;
}

void WriteBatch(nxConsoleLogDevice& device, const std::string& lines)
{
    const auto count = static_cast<unsigned>(std::count(lines.begin(), lines.end(), '\n'));
    device.GetLineSink()->WriteLines({lines.data(), lines.size(), count, NX_LOG_LEVEL_INFO, 0});
}
}  // namespace

TEST(nxConsoleLogDevice, WritesLinesInItsFormsAndAsksTheLogForThem)
{
    const nxZoneOfProcess zone("UTC0");
    const OutputPipe output;
    nxConsoleLogDevice device;
    const nxLogLineSink& sink = *device.GetLineSink();
    nxLogManager& manager = nxLogManager::GetInstance();
    const bool before = manager.GetLogThreadIndex();
    manager.SetLogThreadIndex(true);
    device.Write(Record("indexed"));
    manager.SetLogThreadIndex(false);
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::Full, false}));
    device.Write(Record("verbose"));
    device.SetVerboseOutput(false);
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::LevelAndText, false}));
    device.Write(Record("level"));
    device.SetShortForm(nxConsoleLogDevice::ShortForm::Time);
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::TimeAndText, false}));
    device.Write(Record("time"));
    device.SetVerboseOutput(true);
    WriteBatch(device, "as it is\n");
    manager.SetLogThreadIndex(before);
    const std::string index = std::to_string(Record("").GetThreadIndex());
    EXPECT_EQ(output.Take(), "[WRN][05Mar24 09:07:03.123.456][" + index +
                                 "] indexed [tests/con\\x0Asole:12]\n"
                                 "[WRN][05Mar24 09:07:03.123.456] verbose [tests/con\\x0Asole:12]\n"
                                 "[WRN] level\n"
                                 "[05Mar24 09:07:03.123.456] time\n"
                                 "as it is\n");
    EXPECT_EQ(device.GetLostLines(), 0U);

    device.SetVerboseOutput(false);
    manager.RegisterLogDevice(&device);
    manager.ImmediateWrite(Record("one"));
    device.Destroy();
    {
        nxConsoleLogDevice leaving;
        manager.RegisterLogDevice(&leaving);
    }
    manager.ImmediateWrite(Record("nowhere"));
    EXPECT_EQ(output.Take(), "[05Mar24 09:07:03.123.456] one\n");
}

TEST(nxConsoleLogDevice, OutlivesAConsoleThatIsGoneOrFull)
{
    signal(SIGPIPE, SIG_DFL);
    nxConsoleLogDevice device;
    {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        const nxRedirected output(STDOUT_FILENO, ends[1]);
        WriteBatch(device, "one\ntwo\n");
        device.Write(Record("three"));
        EXPECT_EQ(device.GetLostLines(), 3U);
    }
    {
        const nxRedirected output(STDOUT_FILENO, open("/dev/full", O_WRONLY));
        WriteBatch(device, "four\n");
        EXPECT_EQ(device.GetLostLines(), 4U);
    }
    sigset_t waiting;
    sigpending(&waiting);
    EXPECT_EQ(sigismember(&waiting, SIGPIPE), 0);
}

TEST(nxConsoleLogDevice, WaitsForASlowReader)
{
    const OutputPipe output;
    nxConsoleLogDevice device;
    std::string lines, text;
    for (int i = 0; i < 2'000; ++i)
        lines.append("a line of the log\n");
    {
        const nxJoinedThread reader(
            [&]
            {
                while (text.size() < lines.size())
                    text += output.Take();
            });
        WriteBatch(device, lines);
    }
    EXPECT_EQ(text, lines);
    EXPECT_EQ(device.GetLostLines(), 0U);
}

TEST(nxConsoleLogDevice, IsNotHeldUpByAConsoleThatTakesNothingAndHoldsUpNoFile)
{
    if (!nxInNewProcess())
        return;
    const nxScratchDirectory directory;
    setenv("QRX_LOG_DIRECTORY", directory.GetPath().c_str(), 1);
    setenv("QRX_LOG_TO_CONSOLE", "TRUE", 1);
    constexpr std::size_t lines = 3'000;
    std::string taken, file;
    {
        const OutputPipe output;
        fcntl(STDOUT_FILENO, F_SETFL, 0);  // as programs are given one
        NX_LOG(NX_LOG_LEVEL_ERROR) << "early";
        nxLogSetUp();
        WaitUntilWritten();
        taken = output.Take();
        for (std::size_t i = 0; i < lines; ++i)
            NX_LOG(NX_LOG_LEVEL_WARNING) << "line " << i;
        WaitUntilWritten();
        file = nxReadFile(nxFileLogDevice::GetInstance().GetFileName());
    }
    EXPECT_NE(taken.find("] early ["), std::string::npos);
    EXPECT_NE(file.find("] early ["), std::string::npos);
    EXPECT_EQ(std::count(file.begin(), file.end(), '\n'), static_cast<std::ptrdiff_t>(lines + 1));
    EXPECT_GT(nxConsoleLogDevice::GetInstance().GetLostLines(), lines / 2);
    nxFileLogDevice::GetInstance().Destroy();
}

TEST(nxConsoleLogDevice, LosesWholeLinesOfAPipeWithoutAReader)
{
    // Where the pipe cannot be opened once more in a mode of its own, it is asked before each piece.
    for (const unsigned refusals : {0U, 9U})
    {
        SCOPED_TRACE(refusals);
        nxConsoleLogDevice device;
        const nxSystemCallFault fault("open", EACCES, {.times = refusals});
        std::string taken, lines;
        {
            const OutputPipe output;
            fcntl(STDOUT_FILENO, F_SETFL, 0);
            for (int i = 0; i < 1'000; ++i)
                lines += "a line of the log\n";
            WriteBatch(device, lines);
            for (const char* const more : {"next\n", "last\n"})
            {
                taken += output.Take();
                WriteBatch(device, more);
            }
            taken += output.Take();
        }
        EXPECT_GT(device.GetLostLines(), 500U);
        EXPECT_EQ(static_cast<std::uint64_t>(std::count(taken.begin(), taken.end(), '\n')) + device.GetLostLines(),
                  1'002U);
        const std::string end = taken.substr(taken.rfind("log\n") + 4);  // a line that was begun is ended first
        EXPECT_TRUE(end == "next\nlast\n" || end == "last\n") << end;
        EXPECT_TRUE(lines.starts_with(taken.substr(0, taken.size() - end.size())));
        EXPECT_EQ(fault.GetHits() != 0, refusals != 0);
    }
}

TEST(nxConsoleLogDevice, LeavesAloneWhatIsNoStandardOutput)
{
    const nxScratchDirectory directory;
    nxConsoleLogDevice device;
    const int before = dup(STDOUT_FILENO);
    std::fflush(nullptr);
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    dup2(pair[0], STDOUT_FILENO);  // a connection that the program was given this number for
    WriteBatch(device, "one\n");
    close(STDOUT_FILENO);
    WriteBatch(device, "two\n");
    const int orders = open((directory.GetPath() / "orders").c_str(), O_RDWR | O_CREAT, 0600);
    dup2(orders, STDOUT_FILENO);
    WriteBatch(device, "three\n");
    dup2(before, STDOUT_FILENO);
    for (const int descriptor : {before, pair[0], orders})
        if (descriptor != STDOUT_FILENO)
            close(descriptor);
    char byte;
    EXPECT_EQ(read(pair[1], &byte, 1), 0);
    close(pair[1]);
    EXPECT_EQ(nxReadFile(directory.GetPath() / "orders"), "");
    EXPECT_EQ(device.GetLostLines(), 3U);
}
