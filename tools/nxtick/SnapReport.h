// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_SNAPREPORT_H
#define NXTICK_SNAPREPORT_H

#include <chrono>
#include <cstdint>
#include <string>

#include "SnapCounts.h"

namespace nxtick
{
/// The report on standard error while files are worked on: a line for each rejected row, the progress if the work takes
/// more than two seconds and standard error is a terminal, failures, and the summary. A quiet report has failures alone.
/// The rows, the failures and the summary also go to the log.
class SnapReport
{
public:
    explicit SnapReport(bool isQuiet);
    ~SnapReport();
    SnapReport(const SnapReport&) = delete;
    SnapReport& operator=(const SnapReport&) = delete;

    /// Begins a file. @param name what messages call it.
    void BeginFile(const std::string& name);
    void Rejected(std::uint64_t line, const std::string& reason);
    /// @param counts of the file at hand. @param share of it that has been read, 0 to 1; negative where it is not known.
    void Progress(const SnapCounts& counts, double share);
    /// Ends the file and adds its counts to those of the run.
    void EndFile(const SnapCounts& counts) { _total += counts; }
    /// Tells of a file that could not be worked on to its end.
    void Failed(const std::string& reason);
    /// Shows the messages that wait.
    void Flush();

    const SnapCounts& GetTotal() const { return _total; }
    /// @param nameOfMoved what the prices off the grid are called.
    void Summary(const char* nameOfMoved);

private:
    using Clock = std::chrono::steady_clock;

    double _Seconds() const { return std::chrono::duration<double>(Clock::now() - _start).count(); }
    void _ClearProgress();

    bool _isQuiet;
    bool _isWatched;
    std::string _fileName;
    std::uint64_t _files = 0;
    SnapCounts _total;
    Clock::time_point _start = Clock::now();
    double _nextProgress = 2.0;  // seconds after the start
    bool _isProgressShown = false;
    std::string _rejected;  // lines not written yet
};
}  // namespace nxtick

#endif
