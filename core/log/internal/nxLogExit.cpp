#include "core/log/internal/nxLogExit.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogPatience.h"
#include "core/log/internal/nxLogQueue.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/platform/nxProcess.h"
#include "core/platform/nxServiceThread.h"
#include "core/platform/nxStandardStream.h"

namespace
{
constexpr std::int64_t secondAtExit = 1'000'000'000;

// At the end of the process the queue is written out, unless a device keeps it up too long. The end comes in several
// steps, by one thread; the limits hold for all of them together. Returns whether all has been written.
bool WriteOutOnce()
{
    constexpr std::int64_t longest = 10 * secondAtExit;
    constexpr std::int64_t longestStall = 2 * secondAtExit;
    static nxLogPatience waited;
    static bool stalled = false;
    static std::uint32_t progressAtStall = 0;
    nxLogDeviceList::GetInstance().BeginEnd();
    const nxLogQueue& queue = nxLogQueue::GetInstance();
    if (waited.Look() >= longest || (stalled && queue.GetProgress() == progressAtStall))
        return false;
    stalled = !nxLogWriter::GetInstance().WriteOut(longest, longestStall, waited);
    progressAtStall = queue.GetProgress();
    return !stalled;
}

void WriteOutAtExit() { static_cast<void>(WriteOutOnce()); }

// Once more when the library itself ends: static destructors that ran meanwhile may have reported.
[[gnu::destructor]] void WriteOutAtUnload()
{
    // Now the process ends in the midst of whatever its threads do. Let that not be a line of the log's.
    nxLogWriter& writer = nxLogWriter::GetInstance();
    if (WriteOutOnce())
        return writer.KeepStill(secondAtExit);
    // A device is stuck, or there is no memory to write with.
    constexpr std::string_view begin = "Log records that were not written when the process ended: ";
    char text[128];
    char* end = std::copy(begin.begin(), begin.end(), text);
    if (const std::size_t lost = nxLogQueue::GetInstance().DropWaiting(writer.GetInHand()); lost != 0)
    {
        end = std::to_chars(end, text + sizeof text - 1, lost).ptr;
        *end++ = '\n';
        nxLogExit::Complain({text, static_cast<std::size_t>(end - text)});
    }
}
}  // namespace

void nxLogExit::Register() noexcept
{
    // Not initialised by a function-local static: a child forked meanwhile would wait for its guard for ever.
    static constinit bool isRegistered = false;
    isRegistered = isRegistered || nxProcess::CallAtEnd(&WriteOutAtExit);
}

void nxLogExit::EndProcessIfLast() noexcept
{
    // Nobody is left who could start another thread meanwhile.
    if (!nxProcess::IsOnlyThreadLeft())
        return;
    nxLogWriter::GetInstance().Leave();
    // A signal that nobody could take meanwhile has its effect now, and so have those that come while the process ends.
    nxServiceThread::AcceptSignals();
    std::exit(0);
}

void nxLogExit::Complain(std::string_view text) noexcept
{
    static_cast<void>(nxStandardStream::GetErrors().Write(text));
}
