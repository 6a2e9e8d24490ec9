// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxSignals.h"

#include <signal.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace
{
constexpr int lastSignal = 64;

// The thread that makes a fault gets its signal, whatever another one waits for.
constexpr int signalsOfFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS};

sigset_t GetSystemSet(nxSignals::Set signals)
{
    sigset_t set;
    sigemptyset(&set);
    for (; signals != 0; signals &= signals - 1)
        sigaddset(&set, std::countr_zero(signals) + 1);
    return set;
}

// The signals that are blocked in the thread whose folder of /proc this is. A thread that has ended meanwhile counts as one
// that blocks all.
nxSignals::Set ReadBlocked(const std::filesystem::path& folder)
{
    static constexpr std::string_view key = "SigBlk:\t";
    std::ifstream status(folder / "status");
    nxSignals::Set blocked = ~nxSignals::Set{0};
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key))
            std::from_chars(line.data() + key.size(), line.data() + line.size(), blocked, 16);
    return blocked;
}

bool IsWake(const siginfo_t& info, const void* token)
{
    return info.si_code == SI_QUEUE && info.si_pid == getpid() && info.si_value.sival_ptr == token;
}
}  // namespace

nxSignals::Set nxSignals::GetSet(int signal) noexcept
{
    sigset_t set;
    sigemptyset(&set);
    // The C library refuses its own signals here.
    if (signal < 1 || signal > lastSignal || sigaddset(&set, signal) != 0 || signal == SIGKILL || signal == SIGSTOP)
        return 0;
    for (const int fault : signalsOfFaults)
        if (signal == fault)
            return 0;
    return Set{1} << (signal - 1);
}

bool nxSignals::IsIgnored(int signal) noexcept
{
    struct sigaction action;
    return sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) == 0 &&
           action.sa_handler == SIG_IGN;
}

nxSignals::Set nxSignals::Block(Set signals) noexcept
{
    const sigset_t set = GetSystemSet(signals);
    sigset_t before;
    if (pthread_sigmask(SIG_BLOCK, &set, &before) != 0)
        return 0;
    Set added = signals;
    for (Set rest = signals; rest != 0; rest &= rest - 1)
        if (const int signal = std::countr_zero(rest) + 1; sigismember(&before, signal) == 1)
            added &= ~GetSet(signal);
    return added;
}

void nxSignals::Unblock(Set signals) noexcept
{
    const sigset_t set = GetSystemSet(signals);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

int nxSignals::Wait(Set signals, const void* token) noexcept
{
    const sigset_t set = GetSystemSet(signals);
    for (;;)
    {
        siginfo_t info;
        if (const int signal = sigwaitinfo(&set, &info); signal > 0)
            return IsWake(info, token) ? 0 : signal;
    }
}

int nxSignals::Take(Set signals, const void* token) noexcept
{
    const sigset_t set = GetSystemSet(signals);
    const timespec noTime{};
    for (;;)
    {
        siginfo_t info;
        const int signal = sigtimedwait(&set, &info, &noTime);
        if (signal > 0 && !IsWake(info, token))
            return signal;
        if (signal <= 0 && errno == EAGAIN)
            return 0;
    }
}

void nxSignals::Wake(pthread_t thread, Set signals, const void* token) noexcept
{
    sigval value;
    value.sival_ptr = const_cast<void*>(token);
    pthread_sigqueue(thread, std::countr_zero(signals) + 1, value);
}

std::vector<unsigned> nxSignals::FindThreadsThatAccept(Set signals)
{
    std::vector<unsigned> threads;
    std::error_code error;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry("/proc/self/task", error); !error && entry != end;
         entry.increment(error))
    {
        const std::string name = entry->path().filename();
        unsigned number = 0;
        std::from_chars(name.data(), name.data() + name.size(), number);
        if (number != 0 && (ReadBlocked(entry->path()) & signals) != signals)
            threads.push_back(number);
    }
    return threads;
}
