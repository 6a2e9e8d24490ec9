// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxProcess.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <span>

#include "core/platform/nxFile.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
long long NanosecondsOf(clockid_t clock)
{
    timespec now{};
    ::syscall(SYS_clock_gettime, clock, &now);  // works in a sandbox that forbids the processor's counter
    return now.tv_sec * nxNanoseconds::PerSecond + now.tv_nsec;
}

// The state of the process, as the fields of /proc/self/stat. Allocates nothing.
class StatusOfProcess
{
public:
    StatusOfProcess()
    {
        std::size_t size = 0;
        const int error = nxFile::ReadAll("/proc/self/stat", std::span(_text).first(sizeof _text - 1), size);
        _text[error == 0 ? size : 0] = '\0';
    }

    // The text of a field from the third on; null when there is none. The second field is the program's name in
    // parentheses and may itself hold blanks and parentheses.
    const char* GetField(int number) const
    {
        const char* field = std::strrchr(_text, ')');
        for (int i = 2; i < number && field != nullptr; ++i)
            field = std::strchr(field + 1, ' ');
        return field == nullptr ? nullptr : field + 1;
    }

private:
    char _text[1024];
};

// The start of the process in nanoseconds since that of the machine; negative when the system does not tell.
long long StartSinceBoot()
{
    const StatusOfProcess status;
    const char* const field = status.GetField(22);
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    if (field == nullptr || ticksPerSecond <= 0)
        return -1;
    const long long ticks = std::strtoll(field, nullptr, 10);
    return ticks / ticksPerSecond * nxNanoseconds::PerSecond +
           ticks % ticksPerSecond * (nxNanoseconds::PerSecond / ticksPerSecond);
}

// How likely other machines reach the interface's address: the higher the better, 0 for not at all.
int Usefulness(const ifaddrs& interface)
{
    if (interface.ifa_addr == nullptr || (interface.ifa_flags & IFF_UP) == 0 ||
        (interface.ifa_flags & IFF_LOOPBACK) != 0)
        return 0;
    if (interface.ifa_addr->sa_family == AF_INET)
    {
        sockaddr_in address{};
        std::memcpy(&address, interface.ifa_addr, sizeof(address));
        const bool isLinkLocal = (ntohl(address.sin_addr.s_addr) >> 16) == 0xA9FE;  // 169.254.x.x
        return isLinkLocal ? 2 : 4;
    }
    if (interface.ifa_addr->sa_family == AF_INET6)
    {
        sockaddr_in6 address{};
        std::memcpy(&address, interface.ifa_addr, sizeof(address));
        return IN6_IS_ADDR_LINKLOCAL(&address.sin6_addr) ? 1 : 3;
    }
    return 0;
}

std::string AddressText(const sockaddr& any)
{
    char text[INET6_ADDRSTRLEN] = "";
    if (any.sa_family == AF_INET)
    {
        sockaddr_in address{};
        std::memcpy(&address, &any, sizeof(address));
        ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof(text));
    }
    else
    {
        sockaddr_in6 address{};
        std::memcpy(&address, &any, sizeof(address));
        ::inet_ntop(AF_INET6, &address.sin6_addr, text, sizeof(text));
    }
    return text;
}
}  // namespace

unsigned nxProcess::GetID() { return static_cast<unsigned>(::getpid()); }

bool nxProcess::IsOnlyThreadLeft(unsigned others)
{
    // The link cannot be read once the main thread has ended. This comes first because it opens no file: other code of
    // the process may rely on the number that its next descriptor gets.
    char link = 0;
    if (::readlink("/proc/self/cwd", &link, sizeof link) >= 0)
        return false;
    const StatusOfProcess status;
    // The state is that of the main thread, which is counted as a thread until the process ends.
    const char* const state = status.GetField(3);
    const char* const threads = status.GetField(20);
    return state != nullptr && threads != nullptr && *state == 'Z' && std::strtol(threads, nullptr, 10) == 2L + others;
}

nxProcess::StartTime nxProcess::GetStartTime()
{
    long long start = NanosecondsOf(CLOCK_REALTIME);
    if (const long long sinceBoot = StartSinceBoot(); sinceBoot >= 0)
        start -= NanosecondsOf(CLOCK_BOOTTIME) - sinceBoot;
    return {start / nxNanoseconds::PerSecond, static_cast<unsigned>(start % nxNanoseconds::PerSecond)};
}

std::string nxProcess::GetHostName()
{
    char name[256] = "";
    if (::gethostname(name, sizeof(name) - 1) != 0 || name[0] == '\0')
        return "localhost";
    return name;
}

std::string nxProcess::GetIPAddress()
{
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return "127.0.0.1";
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);

    const ifaddrs* best = nullptr;
    for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next)
        if (Usefulness(*each) > (best == nullptr ? 0 : Usefulness(*best)))
            best = each;
    return best == nullptr ? "127.0.0.1" : AddressText(*best->ifa_addr);
}

std::string nxProcess::GetProgramName() { return program_invocation_short_name; }

bool nxProcess::CallAtEnd(void (*function)()) noexcept
{
    return std::atexit(function) == 0 && std::at_quick_exit(function) == 0;
}
