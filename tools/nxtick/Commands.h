// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_COMMANDS_H
#define NXTICK_COMMANDS_H

#include "Request.h"

namespace nxtick
{
/// @name What nxtick can do
/// One function for each action. @return the exit status. @throws Failure when the task cannot be done to its end.
/// @{
int List(const Request& request);
int Bands(const Request& request);
int Price(const Request& request);
int Ladder(const Request& request);
int Chart(const Request& request);
int Snap(const Request& request);
/// @}
}  // namespace nxtick

#endif
