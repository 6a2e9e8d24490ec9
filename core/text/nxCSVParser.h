// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVPARSER_H
#define CORE_TEXT_NXCSVPARSER_H

#include <cstddef>
#include <memory>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxCSVBlock.h"
#include "core/text/nxCSVDialect.h"
#include "core/text/nxCSVRow.h"
#include "core/text/nxCSVRows.h"

class nxCSVBlocks;

/// Reads a CSV text row by row from any source of bytes, in bounded memory. nxCSVFileReader reads files and values.
///
/// - A field in quotes may hold separators, line ends and doubled quotes. A quote inside an unquoted field is an ordinary
///   character. Lines end with LF or CRLF; the last one may lack its end. Every other byte is data, NUL included.
/// - Empty lines and comments are rows too; nxCSVRow::HasFields() tells them apart. The mark with which a text in UTF-8 may
///   begin is dropped.
/// - Errors: NX_ERR_CSV_FILE_READ_ERROR for a quote that is never closed, a row that is too long, a text in UTF-16, and a
///   dialect that cannot divide rows; the source's own error. GetErrorLine() and GetErrorText() say more. All rows before the
///   faulty one have been given. After an error every call returns it again.
/// - Threads: an object serves one thread at a time; see nxCSVRows for several.
/// @code
/// std::string_view rest = "symbol,price\nES,4501.25\n";
/// const auto read = [](void* context, char* buffer, std::size_t size, std::size_t& count)
/// {
///     auto& text = *static_cast<std::string_view*>(context);
///     count = text.copy(buffer, size);
///     text.remove_prefix(count);
///     return nxErrorEnum();
/// };
/// nxCSVParser parser(read, &rest);
/// nxCSVRow row;
/// std::string scratch;
/// std::string_view symbol;
/// for (bool hasRow = true; parser.Next(row, hasRow).IsOK() && hasRow;)
///     if (row.GetField(0, scratch, symbol).IsOK())
///         std::cout << symbol << '\n';
/// @endcode
class NX_CORE_API nxCSVParser
{
public:
    /// Reads the next bytes of the text.
    /// @param context what the constructor was given.
    /// @param read receives how many bytes came, at most @p size; 0 at the end of the text.
    /// @return an error ends reading. An exception passes through; the parser must then not be used any more.
    typedef nxErrorEnum (*Source)(void* context, char* buffer, std::size_t size, std::size_t& read);

    static constexpr std::size_t UsualMaximumRowSize = std::size_t{1} << 20;  ///< 1 MiB.
    static constexpr std::size_t UsualBlockSize = std::size_t{1} << 18;       ///< 256 KiB.

    /// @param source is called when a block is to be read, and again while a row is longer than what came.
    /// @param context is handed to @p source, and must live as long as it needs.
    /// @param maximumRowSize the longest row in bytes, its line end included, and below 4 GiB.
    /// @param blockSize how many bytes are read at once. Blocks grow up to @p maximumRowSize when rows are longer.
    nxCSVParser(Source source, void* context, const nxCSVDialect& dialect = {},
                std::size_t maximumRowSize = UsualMaximumRowSize, std::size_t blockSize = UsualBlockSize);
    ~nxCSVParser();
    nxCSVParser(const nxCSVParser&) = delete;
    nxCSVParser& operator=(const nxCSVParser&) = delete;

    /// Reads the next row.
    /// @param row receives it, valid until the next call.
    /// @param hasRow receives false at the end of the text, which is a success, and after an error.
    [[nodiscard]] nxErrorEnum Next(nxCSVRow& row, bool& hasRow)
    {
        hasRow = _rows.Next(row);
        return hasRow ? nxErrorEnum() : _NextOfBlock(row, hasRow);
    }

    /// Reads the next rows as a block, for nxCSVRows. Not to be mixed with Next().
    /// @param hasBlock receives false at the end of the text, which is a success, and after an error.
    [[nodiscard]] nxErrorEnum NextBlock(nxCSVBlock& block, bool& hasBlock);

    const nxCSVDialect& GetDialect() const;  ///< @return the dialect that the parser was made with.
    /// @return the line on which the row begins that cannot be read, from 1; 0 without an error.
    unsigned long long GetErrorLine() const;
    /// @return what is wrong, without the line; empty without an error.
    const std::string& GetErrorText() const;
    /// @return whether the text began with the mark of UTF-8. Known after the first row or block.
    bool HasByteOrderMark() const;

private:
    nxErrorEnum _NextOfBlock(nxCSVRow& row, bool& hasRow);

    std::unique_ptr<nxCSVBlocks> _blocks;
    nxCSVBlock _block;
    nxCSVRows _rows;
};

#endif
