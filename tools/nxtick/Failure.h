// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_FAILURE_H
#define NXTICK_FAILURE_H

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace nxtick
{
/// Ends the run at once with exit status 2. The text is the one line that the user reads.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A failure at a place of the input file. The text begins with the line's number; the catcher, which knows the file's
/// name, puts the name in front.
class FileFailure : public Failure
{
public:
    using Failure::Failure;
};

/// A failure of the output, which a run over several files cannot go on after.
class OutputFailure : public Failure
{
public:
    using Failure::Failure;
};

/// @throws OutputFailure "cannot write NAME: " and what errno says.
[[noreturn]] inline void FailToWrite(const std::string& name)
{
    const std::string reason = std::strerror(errno);  // before anything else can change errno
    throw OutputFailure("cannot write " + name + ": " + reason);
}
}  // namespace nxtick

#endif
