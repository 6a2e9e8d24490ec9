#include "core/platform/nxProcess.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

namespace
{
constexpr long long nanosecondsPerSecond = 1'000'000'000;

long long NanosecondsOf(clockid_t clock)
{
    timespec now{};
    ::clock_gettime(clock, &now);
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

// When the process started, in nanoseconds since the machine did; negative when the system does not tell.
long long StartSinceBoot()
{
    char text[1024];
    const int file = ::open("/proc/self/stat", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return -1;
    const ssize_t size = ::read(file, text, sizeof(text) - 1);
    ::close(file);
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    if (size <= 0 || ticksPerSecond <= 0)
        return -1;
    text[size] = '\0';

    // The second field is the program's name in parentheses and may hold blanks and parentheses of its own; the start
    // is the twentieth field behind it.
    const char* field = std::strrchr(text, ')');
    for (int i = 0; i < 20 && field != nullptr; ++i)
        field = std::strchr(field + 1, ' ');
    if (field == nullptr)
        return -1;
    const long long ticks = std::strtoll(field + 1, nullptr, 10);
    return ticks / ticksPerSecond * nanosecondsPerSecond +
           ticks % ticksPerSecond * (nanosecondsPerSecond / ticksPerSecond);
}

// How useful an interface's address is to other machines; 0 is no use.
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

nxProcess::StartTime nxProcess::GetStartTime()
{
    long long start = NanosecondsOf(CLOCK_REALTIME);
    if (const long long sinceBoot = StartSinceBoot(); sinceBoot >= 0)
        start -= NanosecondsOf(CLOCK_BOOTTIME) - sinceBoot;
    return {start / nanosecondsPerSecond, static_cast<unsigned>(start % nanosecondsPerSecond)};
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
