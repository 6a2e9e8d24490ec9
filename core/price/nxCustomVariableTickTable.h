// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXCUSTOMVARIABLETICKTABLE_H
#define CORE_PRICE_NXCUSTOMVARIABLETICKTABLE_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/price/nxVariableTickTable.h"

/// A tick table that the catalogue lacks or that an exchange has changed. It is made from a list of bands or read from
/// a file.
///
/// A file is comma-separated text. It may hold any number of tables, each with its bands in ascending order, numbered
/// from 1; the upper bound is inclusive, and the last band of a table has none. Bounds and increments keep the decimal
/// places they are written with.
/// @code{.unparsed}
/// name,band,upper_bound,increment
/// MY_SHARES,1,9.995,0.005
/// MY_SHARES,2,99.99,0.01
/// MY_SHARES,3,,0.05
/// MY_FUNDS,1,,0.0001
/// @endcode
/// @code
/// std::vector<std::unique_ptr<nxCustomVariableTickTable>> tables;
/// std::string reason;
/// if (!nxCustomVariableTickTable::ReadFile("ticks.csv", tables, reason).IsOK())
///     std::cerr << reason << '\n';  // "ticks.csv: line 3: upper bound 9.99 is not above 9.995"
/// @endcode
///
/// - Names: 1 to 64 letters, digits, '_', '-' and '.', each once in a file. They are not entered into the catalogue.
/// - Numbers: positive, at most 18 digits, at most 15 of them decimals. The price that is one tick above a bound, and
///   above the lower bound of the last band, has to fit a decimal with the places of both.
/// - Bounds: the last price of the band, one tick below the next band's first. Where an exchange says "up to and including
///   T" by ticks of I, the bound is T - I. A bound plus its tick that is no multiple of the next tick is accepted, with
///   one warning in the log: just above such a bound prices are rounded off the next band's grid.
/// - Lower bounds: exchanges often print the price from which a tick applies. With the column `lower_bound` in place of
///   `upper_bound` a band has that price, a multiple of the tick below it, and the band below ends one tick before it.
///   Whether the exchange gives the lower or the upper tick to the price itself makes no difference to the valid prices.
///   The first lower bound is empty, 0 or one increment.
/// - Lines end in LF or CR LF; empty lines, lines that begin with '#' and a byte order mark at the start are skipped. A
///   field may be in double quotes. A file has at most 4 MiB.
/// - Errors: returned, with the reason as a sentence for the user; the result argument is then left as it is.
/// - Threads and prices: as nxVariableTickTable.
class NX_CORE_API nxCustomVariableTickTable final : public nxVariableTickTable
{
public:
    /// Bands as GetRangeData() gives them; the bound of the last is the maximum decimal or null.
    typedef std::vector<std::pair<nxDecimal, nxDecimal>> Bands;
    /// The tables of a file, in its order.
    typedef std::vector<std::unique_ptr<nxCustomVariableTickTable>> Tables;

    /// Makes a table from a list of bands.
    /// @return NX_ERR_INVALID_PARAMETER for a name, a bound or an increment that is not allowed, or when there is no
    ///         top band; @p reason then names the fault.
    [[nodiscard]] static nxErrorEnum Create(const std::string& name, const Bands& bands,
                                            std::unique_ptr<nxCustomVariableTickTable>& table, std::string& reason);

    /// Replaces @p tables with those of a file, of standard input ("/dev/stdin") or of a pipe. A name that holds a NUL
    /// cannot be opened. A pipe is read to its end; one to which nobody writes, or nothing for a minute, is an error.
    /// @return NX_ERR_FAILED_TO_OPEN_FILE, NX_ERR_FILE_READ_ERR, or NX_ERR_CSV_FILE_READ_ERROR when the text is not in
    ///         the form above. @p reason then names the file, and for the last error the line. Characters that could
    ///         steer a terminal are escaped, see nxPrintableText.
    [[nodiscard]] static nxErrorEnum ReadFile(const std::string& fileName, Tables& tables, std::string& reason);
    /// Replaces @p tables with those of a text in the form of a file, of any size.
    /// @return NX_ERR_CSV_FILE_READ_ERROR; @p reason then names the line.
    [[nodiscard]] static nxErrorEnum ReadText(std::string_view text, Tables& tables, std::string& reason);

    const std::string& GetName() const { return _name; }  ///< "MY_SHARES"
    std::string GetID() const;                            ///< "VTT_MY_SHARES"

    /// @return the warning that the log was given about the first bound whose tick leads off the next band's grid, as a
    ///         sentence for the user that names table and band; empty when all bands fit together.
    std::string GetGridWarning() const;

private:
    nxCustomVariableTickTable(const std::string& name, const Bands& bands);

    // Makes a table of bands that were checked. A warning about its grid goes to the log.
    static std::unique_ptr<nxCustomVariableTickTable> _Make(const std::string& name, const Bands& bands);

    std::string _name;
};

#endif
