#ifndef NXTICK_FAILURE_H
#define NXTICK_FAILURE_H

#include <stdexcept>

namespace nxtick
{
/// What ends the run at once with exit status 2: the text is the one line that the user reads.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A failure at a place of the input file: the text begins with the line's number, and who knows the file's name puts
/// it in front.
class FileFailure : public Failure
{
public:
    using Failure::Failure;
};
}  // namespace nxtick

#endif
