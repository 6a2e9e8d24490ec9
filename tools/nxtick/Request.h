// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_REQUEST_H
#define NXTICK_REQUEST_H

#include <optional>
#include <string>

#include "CsvRequest.h"
#include "PriceNotation.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
/// What the command line asks for.
struct Request
{
    enum class Action
    {
        Help,
        Version,
        List,    ///< the tick tables
        Bands,   ///< of one table
        Price,   ///< what a grid says at one price
        Ladder,  ///< the prices around one
        Chart,   ///< tick size over price, as a picture
        Snap     ///< columns of prices in CSV files
    };

    enum class Format
    {
        Text,
        Csv,
        Json
    };

    Action action = Action::Help;
    Format format = Format::Text;
    bool isQuiet = false;    ///< Failures alone are told.
    std::string table;       ///< Empty: the fixed increment.
    nxDecimal increment;     ///< Positive where there is no table.
    std::string tablesFile;  ///< Tables of the user's own; empty: none.
    std::string todayFile;   ///< The tables of today; empty: those that are installed.
    std::string today;       ///< YYYY-MM-DD, with which the days of expiry are compared.
    std::string filter;
    std::string status;
    std::string venue;
    PriceNotation notation;  ///< Of prices that are read and shown.
    std::string price;       ///< As given; the notation reads it.
    std::optional<int> step;
    int ladder = 0;
    std::string chartFile;
    CsvRequest csv;
};

/// Checks the options and turns them into a request.
/// @param argv the words of the command line up to a null entry; the first is the command.
/// @throws Failure naming the first thing that is wrong, with the closest option or value where one is near.
Request ReadRequest(const char* const* argv);

/// What -help prints; fits a screen of 80 by 24 characters.
std::string GetHelp();
}  // namespace nxtick

#endif
