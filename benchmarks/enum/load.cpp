// SPDX-License-Identifier: Apache-2.0
// Loads the library named by the argument and prints how many nanoseconds that took. The C++ run-time is there already.
#include <dlfcn.h>

#include <chrono>
#include <iostream>

int main(int, char** arguments)
{
    const auto start = std::chrono::steady_clock::now();
    const bool isLoaded = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) != nullptr;
    const auto end = std::chrono::steady_clock::now();
    std::cout << std::chrono::nanoseconds(end - start).count() << '\n';
    return isLoaded ? 0 : 1;
}
