// SPDX-License-Identifier: Apache-2.0
// Loads the library named by the argument and prints how many nanoseconds that took, and how many kilobytes of private memory it
// has written. The C++ run-time is there already.
#include <dlfcn.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <string>

namespace
{
long PrivateDirtyKilobytes()
{
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string word; file >> word;)
        if (long kilobytes = 0; word == "Private_Dirty:" && file >> kilobytes)
            return kilobytes;
    return 0;
}
}  // namespace

int main(int, char** arguments)
{
    PrivateDirtyKilobytes();  // whatever the first call dirties
    const long dirty = PrivateDirtyKilobytes();
    const auto start = std::chrono::steady_clock::now();
    const bool isLoaded = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) != nullptr;
    const auto end = std::chrono::steady_clock::now();
    std::cout << std::chrono::nanoseconds(end - start).count() << ' ' << PrivateDirtyKilobytes() - dirty << '\n';
    return isLoaded ? 0 : 1;
}
