// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVParser.h"

#include "core/text/internal/nxCSVBlocks.h"

nxCSVParser::nxCSVParser(Source source, void* context, const nxCSVDialect& dialect, std::size_t maximumRowSize,
                         std::size_t blockSize)
    : _blocks(std::make_unique<nxCSVBlocks>(source, context, dialect, maximumRowSize, blockSize)), _rows(dialect)
{
}

nxCSVParser::~nxCSVParser() = default;

nxErrorEnum nxCSVParser::NextBlock(nxCSVBlock& block, bool& hasBlock) { return _blocks->Next(block, hasBlock); }

nxErrorEnum nxCSVParser::_NextOfBlock(nxCSVRow& row, bool& hasRow)
{
    const nxErrorEnum error = _blocks->Next(_block, hasRow);
    _rows.Begin(_block);
    hasRow = _rows.Next(row);
    return error;
}

const nxCSVDialect& nxCSVParser::GetDialect() const { return _blocks->GetDialect(); }

unsigned long long nxCSVParser::GetErrorLine() const { return _blocks->GetErrorLine(); }

const std::string& nxCSVParser::GetErrorText() const { return _blocks->GetErrorText(); }

bool nxCSVParser::HasByteOrderMark() const { return _blocks->HasByteOrderMark(); }
