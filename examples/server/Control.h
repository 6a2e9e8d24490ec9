// SPDX-License-Identifier: Apache-2.0
#ifndef EXAMPLES_SERVER_CONTROL_H
#define EXAMPLES_SERVER_CONTROL_H

#include <filesystem>
#include <string>

/// Changes settings of the log while the program runs: each line of a file is the name of a setting and its value.
///
///     level DBG
///     flush 0.5
///
/// The file is removed when its lines are carried out, so that the one who wrote it sees it.
class Control
{
public:
    explicit Control(std::filesystem::path file) : _file(std::move(file)) {}

    /// Carries out the lines of the file. A line that is not understood is told in the log.
    void CarryOut() const;

private:
    std::filesystem::path _file;
};

#endif
