// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVROW_H
#define CORE_TEXT_NXCSVROW_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxCSVDialect.h"

/// One row of a CSV text, byte for byte, and its fields.
///
/// - A row owns nothing. It is valid until the parser or the nxCSVRows that gave it is asked for the next row, and so are
///   the texts of its fields. A row that nobody gave has no fields.
/// - Fields count from 0. An empty line has one field, which is empty; see HasFields().
/// - Text after a closing quote belongs to the field as it is: `"a"b` is the field `ab`.
/// - Threads: readers may share a row.
struct NX_CORE_API nxCSVRow
{
    std::string_view content;     ///< Everything but the line end. A field in quotes may hold line ends.
    std::string_view terminator;  ///< "\n", "\r\n", or "" or "\r" for a last line that ends so.
    unsigned long long line = 0;  ///< The line on which the row begins, from 1.
    bool hasQuotes = false;       ///< Whether the row holds a quote.
    nxCSVDialect dialect;         ///< How its fields are divided.

    /// @return whether the row is neither an empty line nor a comment. With nxCSVDialect::trimBlanks a line of blanks is
    ///         an empty line.
    bool HasFields() const;

    /// @return the number of fields.
    std::size_t GetFieldCount() const { return _count; }

    /// Finds a field, without its quotes and the blanks that are no part of it. Takes the same time for each field.
    /// @param scratch keeps the text if quotes had to be removed.
    /// @param field receives the text: a part of the row or of @p scratch.
    /// @return NX_ERR_INSUFFICIENT_DATA when the row has no such field; @p field is then untouched.
    [[nodiscard]] nxErrorEnum GetField(std::size_t index, std::string& scratch, std::string_view& field) const
    {
        if (index >= _count)
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        field = _NeedsCare() ? _GetWithCare(GetRawField(index), scratch) : GetRawField(index);
        return nxErrorEnum();
    }

    /// @return the bytes of a field as they are in the row, with quotes and blanks.
    /// @pre @p index is below GetFieldCount().
    std::string_view GetRawField(std::size_t index) const
    {
        const char* const begin = index == 0 ? content.data() : _text + _ends[index - 1] + 1;
        const char* const end = index + 1 == _count ? content.data() + content.size() : _text + _ends[index];
        return {begin, static_cast<std::size_t>(end - begin)};
    }

    /// @return copies of all fields, as GetField() gives them.
    std::vector<std::string> GetFields() const;

private:
    friend class nxCSVRows;

    bool _NeedsCare() const { return hasQuotes || dialect.trimBlanks; }
    std::string_view _GetWithCare(std::string_view raw, std::string& scratch) const;

    const char* _text = nullptr;           // to which the ends are relative
    const std::uint32_t* _ends = nullptr;  // of the fields
    std::size_t _count = 0;
};

#endif
