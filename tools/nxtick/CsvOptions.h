// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVOPTIONS_H
#define NXTICK_CSVOPTIONS_H

#include "CommandLine.h"
#include "CsvRequest.h"

namespace nxtick
{
/// What the options say about the CSV files, but for the method.
/// @throws Failure naming the first thing that is wrong.
CsvRequest ReadCsvRequest(const CommandLine& line);
}  // namespace nxtick

#endif
