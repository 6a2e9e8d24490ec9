// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_SNAPREPORT_H
#define NXTICK_SNAPREPORT_H

#include <chrono>
#include <cstdint>
#include <string>

#include "PriceSnapper.h"

namespace nxtick
{
/// The report on standard error while a column is snapped: a line for each rejected row, the progress if the work takes
/// more than a second and standard error is a terminal, and the summary. The rows and the summary also go to the log.
class SnapReport
{
public:
    /// @param fileName what messages call the input.
    explicit SnapReport(const std::string& fileName);
    ~SnapReport();
    SnapReport(const SnapReport&) = delete;
    SnapReport& operator=(const SnapReport&) = delete;

    void Rejected(std::uint64_t line, const std::string& reason);
    /// @param share of the input that has been read, 0 to 1; negative where it is not known.
    void Progress(const SnapCounts& counts, double share);
    /// Removes the progress from the screen before another message.
    void ClearProgress();
    void Summary(const SnapCounts& counts);

private:
    using Clock = std::chrono::steady_clock;

    double _Seconds() const { return std::chrono::duration<double>(Clock::now() - _start).count(); }
    void _FlushRejected();

    std::string _fileName;
    bool _isWatched;
    Clock::time_point _start = Clock::now();
    double _nextProgress = 1.0;  // seconds after the start
    bool _isProgressShown = false;
    std::string _rejected;  // lines not written yet
};
}  // namespace nxtick

#endif
