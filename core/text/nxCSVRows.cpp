// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVRows.h"

#include <algorithm>
#include <string_view>

#include "core/text/internal/nxByteMarks.h"
#include "core/text/internal/nxCSVFieldText.h"

namespace
{
// The words that are marked at a time, for 16 KiB of text: both stay in the processor's nearest cache.
constexpr std::size_t markStep = 256;
// After the last word there are two without marks, so that 64 bits can be joined anywhere.
constexpr std::size_t emptyWords = 2;
constexpr nxCSVMarks noMarks[emptyWords];
}  // namespace

nxCSVRows::nxCSVRows(const nxCSVDialect& dialect) : _dialect(dialect), _marks(noMarks) {}

void nxCSVRows::Begin(const nxCSVBlock& block)
{
    _block = &block;
    _begin = _marked = block._bytes.data();
    _textEnd = _begin + block._size;
    _line = block._line;
    _marks = noMarks;
    _wordCount = 0;
    _rowEnd = block._ends.empty() ? nullptr : block._ends.data();
}

// The end of a row that is not within 64 bytes, or not marked yet. @return null after the last row.
const char* nxCSVRows::_FindFarEnd()
{
    if (_begin >= _textEnd)
        return nullptr;
    std::uint64_t mask = ~std::uint64_t{0} << _GetShift();
    for (std::size_t at = _GetOffset() / 64;; at -= _Mark())
        for (; at < _wordCount; ++at, mask = ~std::uint64_t{0})
            if (const std::uint64_t ends = _words[at].rowEnds & mask; ends != 0)
                return _marked + at * 64 + std::countr_zero(ends);
}

// Marks further text, and keeps the marks of the row at hand. @return how many words were dropped.
std::size_t nxCSVRows::_Mark()
{
    const std::size_t dropped = _GetOffset() / 64;
    const std::size_t kept = _wordCount - dropped;
    const char* const from = _marked + _wordCount * 64;
    const auto size = static_cast<std::size_t>(_textEnd - from);
    const bool lacksEnd = _textEnd[-1] != '\n';
    const std::size_t rest = (size + (lacksEnd ? 1 : 0) + 63) / 64;
    const std::size_t fresh = _rowEnd != nullptr ? rest : std::min(rest, markStep);
    if (_words.size() < kept + fresh + emptyWords)
        _words.resize(kept + fresh + emptyWords);
    std::copy(_words.begin() + static_cast<std::ptrdiff_t>(dropped),
              _words.begin() + static_cast<std::ptrdiff_t>(_wordCount), _words.begin());
    _MarkPlain(from, size, &_words[kept], fresh);
    if (lacksEnd && fresh == rest)
        _words[kept + size / 64].rowEnds |= std::uint64_t{1} << (size % 64);
    _marks = _words.data();
    _marked += dropped * 64;
    _wordCount = kept + fresh;
    std::fill_n(&_words[_wordCount], emptyWords, nxCSVMarks());
    if (_rowEnd != nullptr)
        _MarkQuoted();
    return dropped;
}

// Marks words in which every separator and every line end counts.
void nxCSVRows::_MarkPlain(const char* text, std::size_t size, nxCSVMarks* words, std::size_t count) const
{
    const nxByteMarks rowEnds('\n');
    const nxByteMarks separators(_dialect.separator);
    for (std::size_t i = 0; i < count; ++i)
        words[i] = {rowEnds.Find64(text + i * 64), separators.Find64(text + i * 64)};
    if (count * 64 <= size)
        return;
    // What follows the text has no marks.
    const std::uint64_t mask = (std::uint64_t{1} << (size % 64)) - 1;
    words[count - 1].rowEnds &= mask;
    words[count - 1].separators &= mask;
}

// Corrects the marks of a whole block where quotes hold line ends and separators.
void nxCSVRows::_MarkQuoted()
{
    const nxCSVFieldText fields(_dialect);
    std::size_t begin = 0;
    for (const nxCSVBlock::_RowEnd& row : _block->_ends)
    {
        if (row.hasQuotes)
        {
            const std::size_t end = row.at - (_marked[row.at - 1] == '\n' ? 1 : 0);
            for (std::size_t at = begin; at < end; at = (at | 63) + 1)
            {
                const std::uint64_t until =
                    end - at < 64 - at % 64 ? (std::uint64_t{1} << (end % 64)) - 1 : ~std::uint64_t{0};
                const std::uint64_t kept = ~(until & (~std::uint64_t{0} << (at % 64)));
                _words[at / 64].rowEnds &= kept;
                _words[at / 64].separators &= kept;
            }
            std::string_view rest(_marked + begin, end - begin);
            for (std::size_t size; (size = fields.GetFirst(rest).size()) != rest.size(); rest.remove_prefix(size + 1))
            {
                const auto at = static_cast<std::size_t>(rest.data() + size - _marked);
                _words[at / 64].separators |= std::uint64_t{1} << (at % 64);
            }
        }
        begin = row.at;
    }
}

void nxCSVRows::_TakeQuotes(nxCSVRow& row)
{
    row.hasQuotes = _rowEnd++->hasQuotes;
    if (row.hasQuotes)
        _line += nxByteMarks('\n').Count(row.content);
}
