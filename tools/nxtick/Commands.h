#ifndef NXTICK_COMMANDS_H
#define NXTICK_COMMANDS_H

#include "Request.h"

namespace nxtick
{
/// @name What nxtick can do, one function for each action, each in a file named after it
/// @return the exit status. @throws Failure when nothing was done.
/// @{
int Snap(const Request& request);
/// @}
}  // namespace nxtick

#endif
