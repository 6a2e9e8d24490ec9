// SPDX-License-Identifier: Apache-2.0
// What records cost with the settings of the environment: logSettings RECORDS BURST
// Bursts of records with three fields, ten milliseconds apart. Prints on standard error the processor time of the process for a
// record in microseconds, and the bytes of its line in the file.

#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "core/log/nxField.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSetUp.h"
#include "core/numeric/nxDecimal.h"

namespace
{
double ProcessMicroseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

double FileBytes(const char* directory)
{
    double bytes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
        bytes += entry.is_regular_file() ? static_cast<double>(entry.file_size()) : 0;
    return bytes;
}
}  // namespace

int main(int count, char** arguments)
{
    const char* const directory = std::getenv("QRX_LOG_DIRECTORY");
    if (count != 3 || !directory || !nxLogSetUp())
        return 2;
    const int records = std::atoi(arguments[1]);
    const int burst = std::atoi(arguments[2]);
    const nxDecimal price(101.25, 2);
    const double before = ProcessMicroseconds();
    for (int i = 0; i < records; ++i)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "order filled" << nxField("order", i) << nxField("price", price)
                                  << nxField("account", "desk 4");
        if (i % burst == burst - 1)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(60);
    const double after = ProcessMicroseconds();
    std::fprintf(stderr, "%.2f %.0f\n", (after - before) / records, FileBytes(directory) / records);
}
