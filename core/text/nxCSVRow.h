// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVROW_H
#define CORE_TEXT_NXCSVROW_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/inline/nxCSVMarks.h"
#include "core/text/nxCSVDialect.h"

/// One row of a CSV text, byte for byte, and its fields.
///
/// - A row owns nothing and is not changed. It is valid until the parser or the nxCSVRows that gave it is asked for the next row, and so are
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
    bool HasFields() const
    {
        if (content.empty() || (dialect.comment != '\0' && content.front() == dialect.comment))
            return false;
        return !dialect.trimBlanks || _HasMoreThanBlanks();
    }

    /// @return the number of fields.
    std::size_t GetFieldCount() const { return _IsShort() ? nxCSVMarks::Count(_ends) : _CountFar(); }

    /// Finds a field, without its quotes and the blanks that are no part of it.
    /// @param scratch keeps the text if quotes had to be removed.
    /// @param field receives the text: a part of the row or of @p scratch.
    /// @return NX_ERR_INSUFFICIENT_DATA when the row has no such field; @p field is then untouched.
    [[nodiscard]] nxErrorEnum GetField(std::size_t index, std::string& scratch, std::string_view& field) const
    {
        const std::string_view found = Find(index, scratch);
        if (found.data() == nullptr)
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        field = found;
        return nxErrorEnum();
    }
    /// The same.
    /// @return the text; its data() are null when the row has no such field.
    std::string_view Find(std::size_t index, std::string& scratch) const
    {
        const std::string_view raw = _Find(index);
        return raw.data() != nullptr && _NeedsCare() ? _GetWithCare(raw, scratch) : raw;
    }

    /// Finds a field as it is in the row, with quotes and blanks.
    /// @return NX_ERR_INSUFFICIENT_DATA when the row has no such field; @p field is then untouched.
    [[nodiscard]] nxErrorEnum GetRawField(std::size_t index, std::string_view& field) const
    {
        const std::string_view raw = _Find(index);
        if (raw.data() == nullptr)
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        field = raw;
        return nxErrorEnum();
    }

    /// @return copies of all fields, as GetField() gives them.
    std::vector<std::string> GetFields() const;

private:
    friend class nxCSVRows;

    bool _HasMoreThanBlanks() const;
    bool _IsShort() const { return content.size() < 64; }
    bool _NeedsCare() const { return hasQuotes || dialect.trimBlanks; }

    // The raw field; its data are null if there is none.
    std::string_view _Find(std::size_t index) const
    {
        if (!_IsShort())
            return _FindFar(index);
        std::uint64_t ends = _ends;
        std::size_t begin = 0;
        if (index != 0)
        {
            for (; index > 1 && ends != 0; --index)
                ends &= ends - 1;
            if (ends == 0)
                return {};
            begin = static_cast<std::size_t>(std::countr_zero(ends)) + 1;
            ends &= ends - 1;
        }
        if (ends == 0)
            return {};
        return {content.data() + begin, static_cast<std::size_t>(std::countr_zero(ends)) - begin};
    }

    std::string_view _FindFar(std::size_t index) const;
    std::size_t _CountFar() const;
    std::string_view _GetWithCare(std::string_view raw, std::string& scratch) const;

    std::uint64_t _ends = 0;             // of the fields of a row below 64 bytes: bit n is set where byte n ends one
    const nxCSVMarks* _marks = nullptr;  // of the row's bytes; its first byte has bit _shift of the first
    unsigned _shift = 0;
};

#endif
