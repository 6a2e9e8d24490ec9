#include "core/log/nxConsoleLogDevice.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

#include "core/log/nxLog.h"
#include "core/log/nxLogManager.h"

namespace
{
// Standard output as another descriptor, for the length of a test.
class Redirected
{
public:
    explicit Redirected(int descriptor) : _before(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        dup2(descriptor, STDOUT_FILENO);
        close(descriptor);
    }
    ~Redirected()
    {
        dup2(_before, STDOUT_FILENO);
        close(_before);
    }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

private:
    int _before;
};

struct Pipe
{
    Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
    ~Pipe() { close(ends[0]); }

    // What has been written so far.
    std::string Take() const
    {
        std::string text;
        char block[4'096];
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        for (ssize_t size; (size = read(ends[0], block, sizeof block)) > 0;)
            text.append(block, static_cast<std::size_t>(size));
        return text;
    }

    int ends[2];
};

nxLog Record(const std::string& text)
{
    setenv("TZ", "UTC0", 1);
    tzset();
    nxLog record(NX_LOG_LEVEL_WARNING, "tests/console", 12, nxTimeStamp(1'709'629'623, 123'456'789));
    record << text;
    return record;
}

void WriteBatch(nxConsoleLogDevice& device, const std::string& lines)
{
    const auto count = static_cast<unsigned>(std::count(lines.begin(), lines.end(), '\n'));
    device.GetLineSink()->WriteLines({lines.data(), lines.size(), count, NX_LOG_LEVEL_INFO, 0});
}
}  // namespace

TEST(nxConsoleLogDevice, WritesLinesInItsForms)
{
    const Pipe pipe;
    nxConsoleLogDevice device;
    nxLogManager& manager = nxLogManager::GetInstance();
    const bool before = manager.GetLogThreadIndex();
    {
        const Redirected output(pipe.ends[1]);
        manager.SetLogThreadIndex(false);
        device.Write(Record("verbose"));
        device.SetVerboseOutput(false);
        device.Write(Record("level"));
        device.SetShortForm(nxConsoleLogDevice::ShortForm::Time);
        device.Write(Record("time"));
        device.SetVerboseOutput(true);
        WriteBatch(device, "as it is\n");
    }
    manager.SetLogThreadIndex(before);
    EXPECT_EQ(pipe.Take(),
              "[WRN][05Mar24 09:07:03.123.456] verbose [tests/console:12]\n"
              "[WRN] level\n"
              "[05Mar24 09:07:03.123.456] time\n"
              "as it is\n");
    EXPECT_EQ(device.GetLostLines(), 0U);
}

TEST(nxConsoleLogDevice, AsksForTheLinesOfItsForm)
{
    nxConsoleLogDevice device;
    const nxLogLineSink& sink = *device.GetLineSink();
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::Full, false}));
    device.SetVerboseOutput(false);
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::LevelAndText, false}));
    device.SetShortForm(nxConsoleLogDevice::ShortForm::Time);
    EXPECT_EQ(sink.GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::TimeAndText, false}));
}

TEST(nxConsoleLogDevice, IsRegisteredByTheProgramAndLeavesByItself)
{
    const Pipe pipe;
    const Redirected output(pipe.ends[1]);
    nxLogManager& manager = nxLogManager::GetInstance();
    {
        nxConsoleLogDevice device;
        device.SetVerboseOutput(false);
        manager.RegisterLogDevice(&device);
        manager.ImmediateWrite(Record("one"));
        device.Destroy();
        manager.ImmediateWrite(Record("nowhere"));
        manager.RegisterLogDevice(&device);
        manager.ImmediateWrite(Record("two"));
    }
    manager.ImmediateWrite(Record("nowhere"));
    EXPECT_EQ(pipe.Take(), "[WRN] one\n[WRN] two\n");
}

TEST(nxConsoleLogDevice, OutlivesAConsoleThatIsGoneOrFull)
{
    signal(SIGPIPE, SIG_DFL);
    nxConsoleLogDevice device;
    {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        const Redirected output(ends[1]);
        WriteBatch(device, "one\ntwo\n");
        device.Write(Record("three"));
        EXPECT_EQ(device.GetLostLines(), 3U);
    }
    {
        const Redirected output(open("/dev/full", O_WRONLY));
        WriteBatch(device, "four\n");
        EXPECT_EQ(device.GetLostLines(), 4U);
    }
    sigset_t waiting;
    sigpending(&waiting);
    EXPECT_EQ(sigismember(&waiting, SIGPIPE), 0);
}

TEST(nxConsoleLogDevice, EndsALineThatItBegan)
{
    const Pipe pipe;
    nxConsoleLogDevice device;
    const Redirected output(pipe.ends[1]);
    fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
    fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 4'096);
    // Longer than the pipe, and nobody reads.
    const std::string longLine(5'000, 'x');
    WriteBatch(device, longLine + "\nlost\nlost\n");
    EXPECT_EQ(device.GetLostLines(), 2U);
    std::string text = pipe.Take();
    WriteBatch(device, "next\n");
    text += pipe.Take();
    EXPECT_EQ(text, longLine + "\nnext\n");
}

TEST(nxConsoleLogDevice, WaitsForASlowReader)
{
    const Pipe pipe;
    nxConsoleLogDevice device;
    const Redirected output(pipe.ends[1]);
    fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
    fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 4'096);
    std::string lines;
    for (int i = 0; i < 2'000; ++i)
        lines.append("a line of the log\n");
    std::string text;
    std::thread reader(
        [&]
        {
            while (text.size() < lines.size())
                text += pipe.Take();
        });
    WriteBatch(device, lines);
    reader.join();
    EXPECT_EQ(text, lines);
    EXPECT_EQ(device.GetLostLines(), 0U);
}
