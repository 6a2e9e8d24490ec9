// SPDX-License-Identifier: Apache-2.0
// Reads texts from standard input, each after a line "SIZE SEPARATOR QUOTE" with the characters as numbers, and prints their
// rows: the fields in hexadecimal, "-" for an empty line, then "end" or "error". Ends with status 1 when the size of the
// blocks makes a difference.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/nxAlgorithm.h"
#include "core/text/nxCSVParser.h"
#include "tests/support/nxSanitizer.h"

namespace
{
struct Text
{
    std::string_view rest;
    std::size_t piece;
};

nxErrorEnum Read(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& text = *static_cast<Text*>(context);
    read = text.rest.copy(buffer, std::min(size, text.piece));
    text.rest.remove_prefix(read);
    return nxErrorEnum();
}

std::string GetRows(std::string_view content, const nxCSVDialect& dialect, std::size_t blockSize)
{
    Text text = {content, blockSize};
    nxCSVParser parser(&Read, &text, dialect, nxCSVParser::UsualMaximumRowSize, blockSize);
    std::string rows, scratch, bytes;
    nxCSVRow row;
    bool hasRow = true;
    nxErrorEnum error = parser.Next(row, hasRow);
    for (; hasRow; error = parser.Next(row, hasRow))
    {
        bytes.append(row.content).append(row.terminator);
        const std::vector<std::string> fields = row.GetFields();
        for (std::size_t i = 0; i < row.GetFieldCount() && row.HasFields(); ++i)
        {
            std::string_view field = "?";
            if (!row.GetField(i, scratch, field).IsOK() || field != fields.at(i))
                rows += "different ";
            for (const char c : field)
                nxAlgorithm::AppendAsHex(static_cast<unsigned char>(c), rows);
            rows += i + 1 < row.GetFieldCount() ? "," : "";
        }
        rows += row.HasFields() ? "\n" : "-\n";
    }
    if (error.IsOK() && bytes != content)
        rows += "bytes are lost\n";
    return rows + (error.IsOK() ? "end\n" : "error\n");
}
}  // namespace

int main()
{
    std::string head;
    while (std::getline(std::cin, head))
    {
        std::size_t size = 0;
        unsigned separator = 0, quote = 0;
        if (std::sscanf(head.c_str(), "%zu %u %u", &size, &separator, &quote) != 3)
            return 2;
        std::string content(size, '\0');
        std::cin.read(content.data(), static_cast<std::streamsize>(size));
        nxCSVDialect dialect;
        dialect.separator = static_cast<char>(separator);
        dialect.quote = static_cast<char>(quote);
        const std::string rows = GetRows(content, dialect, nxCSVParser::UsualBlockSize);
        for (std::size_t blockSize = 1; blockSize <= 64; blockSize += nxUnderAddressSanitizer ? 7 : 1)
            if (GetRows(content, dialect, blockSize) != rows)
                return 1;
        std::cout << rows;
    }
    return 0;
}
