// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVDIALECT_H
#define CORE_TEXT_NXCSVDIALECT_H

#include "core/nxExport.h"

/// The characters that divide a CSV text into rows and fields. Each is one byte.
///
/// A blank is a space or a tab. Where the separator is one of the two, it is no blank.
/// @code
/// nxCSVDialect dialect;  // commas, double quotes, a header line
/// dialect.separator = ';';
/// dialect.decimalSeparator = ',';
/// @endcode
struct NX_CORE_API nxCSVDialect
{
    char separator = ',';         ///< Between the fields of a row.
    char quote = '"';             ///< Around a field; doubled inside it. '\0': a quote is a character like any other.
    char decimalSeparator = '.';  ///< In numbers. Only nxCSVFileReader reads numbers.
    char comment = '\0';          ///< A line that begins with it has no fields. '\0': there are no comments.
    /// Whether blanks around a field are no part of it. A quote after blanks then opens a quoted field; blanks inside
    /// quotes stay.
    bool trimBlanks = false;
    bool hasHeader = true;  ///< Whether the first row names the columns. Only nxCSVFileReader reads names.

    /// @return whether rows and fields can be told apart: separator, quote and comment are different characters and no
    ///         line ends, and if blanks are trimmed, quote and comment are no blanks.
    bool CanDivide() const;
    /// @return whether a character is a blank of this dialect.
    bool IsBlank(char c) const { return (c == ' ' || c == '\t') && c != separator; }
};

#endif
