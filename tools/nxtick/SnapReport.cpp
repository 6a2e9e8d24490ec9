// SPDX-License-Identifier: Apache-2.0
#include "SnapReport.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Terminal.h"
#include "Text.h"
#include "core/log/nxLogMacros.h"

namespace nxtick
{
namespace
{
constexpr double secondsBetweenProgress = 0.1;
constexpr std::size_t rejectedAtOnce = std::size_t{1} << 14;
constexpr char clearLine[] = "\r\x1b[K";

std::string SecondsText(double seconds)
{
    const auto milliseconds = static_cast<std::uint64_t>(std::llround(seconds * 1000));
    const std::string fraction = std::to_string(1000 + milliseconds % 1000).substr(1);
    return CountText(milliseconds / 1000) + "." + fraction + " s";
}

std::uint64_t Rate(std::uint64_t count, double seconds)
{
    return static_cast<std::uint64_t>(static_cast<double>(count) / std::max(seconds, 1e-6));
}
}  // namespace

SnapReport::SnapReport(bool isQuiet) : _isQuiet(isQuiet), _isWatched(!isQuiet && IsErrorTerminal()) {}

// Also when the run failed: the report names the rows that were rejected until then.
SnapReport::~SnapReport() { Flush(); }

void SnapReport::BeginFile(const std::string& name)
{
    _fileName = name;
    ++_files;
}

void SnapReport::Rejected(std::uint64_t line, const std::string& reason)
{
    const std::string message = _fileName + ":" + std::to_string(line) + ": " + reason;
    NX_LOG(NX_LOG_LEVEL_WARNING) << message;
    if (_isQuiet)
        return;
    _rejected += message + "\n";
    if (_isWatched || _rejected.size() > rejectedAtOnce)
        Flush();
}

void SnapReport::Progress(const SnapCounts& counts, double share)
{
    if (!_isWatched)
        return;
    const double seconds = _Seconds();
    if (seconds < _nextProgress)
        return;
    _nextProgress = seconds + secondsBetweenProgress;
    _isProgressShown = true;
    const std::uint64_t rows = _total.rows + counts.rows;
    const std::string file = _files > 1 ? _fileName + ": " : "";
    const std::string percent = share < 0 ? "" : std::to_string(static_cast<int>(std::min(share, 1.0) * 100)) + " %, ";
    WriteError(clearLine + file + percent + CountText(rows) + " rows, " + CountText(Rate(rows, seconds)) +
               " rows a second");
}

void SnapReport::Failed(const std::string& reason)
{
    NX_LOG(NX_LOG_LEVEL_ERROR) << reason;
    Flush();
    WriteError("nxtick: " + reason + "\n");
}

void SnapReport::Summary(const char* nameOfMoved)
{
    Flush();
    const double seconds = _Seconds();
    const SnapCounts& counts = _total;
    const std::vector<std::vector<std::string>> lines = {
        {"rows", CountText(counts.rows)},
        {"on the grid", CountText(counts.onGrid)},
        {nameOfMoved, CountText(counts.moved)},
        {"empty", CountText(counts.empty)},
        {"rejected", CountText(counts.rejected)},
        {"time", SecondsText(seconds)},
        {"rows a second", CountText(Rate(counts.rows, seconds))},
    };
    if (!_isQuiet)
        WriteError(Columns(lines, {1}, {}));
    NX_LOG(NX_LOG_LEVEL_INFO) << (_files == 1 ? _fileName : CountText(_files) + " files") << ": " << counts.rows
                              << " rows, " << counts.onGrid << " on the grid, " << counts.moved << " " << nameOfMoved
                              << ", " << counts.empty << " empty, " << counts.rejected << " rejected, "
                              << SecondsText(seconds);
}

void SnapReport::Flush()
{
    _ClearProgress();
    WriteError(_rejected);
    _rejected.clear();
}

void SnapReport::_ClearProgress()
{
    if (_isProgressShown)
        WriteError(clearLine);
    _isProgressShown = false;
}
}  // namespace nxtick
