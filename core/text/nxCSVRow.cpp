// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVRow.h"

#include "core/text/internal/nxCSVFieldText.h"

namespace
{
// The separators of a row, which may be long.
class CSVSeparators
{
public:
    CSVSeparators(const nxCSVMarks* marks, unsigned shift, std::size_t size) : _marks(marks), _shift(shift), _size(size)
    {
        _Load();
    }

    /// Moves on to the next 64 bytes. @return false at the end.
    bool Advance()
    {
        if (_size - _at <= 64)
            return false;
        _at += 64;
        ++_marks;
        _Load();
        return true;
    }

    std::uint64_t GetWord() const { return _word; }

    /// Takes the next separator. @return its place in the row; the size of the row after the last one.
    std::size_t Take()
    {
        while (_word == 0)
            if (!Advance())
                return _size;
        const std::size_t place = _at + static_cast<std::size_t>(std::countr_zero(_word));
        _word &= _word - 1;
        return place;
    }

private:
    void _Load()
    {
        _word = nxCSVMarks::Join(_marks[0].separators, _marks[1].separators, _shift);
        if (_size - _at < 64)
            _word &= (std::uint64_t{1} << (_size - _at)) - 1;
    }

    const nxCSVMarks* _marks;
    unsigned _shift;
    std::size_t _size;
    std::size_t _at = 0;
    std::uint64_t _word = 0;
};
}  // namespace

bool nxCSVDialect::CanDivide() const
{
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    const auto isUsable = [&](char c)
    { return c == '\0' || (c != separator && !isLineEnd(c) && !(trimBlanks && IsBlank(c))); };
    return !isLineEnd(separator) && isUsable(quote) && isUsable(comment) && (quote == '\0' || quote != comment);
}

bool nxCSVRow::_HasMoreThanBlanks() const { return !nxCSVFieldText(dialect).GetTrimmed(content).empty(); }

std::vector<std::string> nxCSVRow::GetFields() const
{
    std::vector<std::string> fields;
    if (_marks == nullptr)
        return fields;
    CSVSeparators separators(_marks, _shift, content.size());
    std::string scratch;
    for (std::size_t begin = 0; begin <= content.size();)
    {
        const std::size_t end = separators.Take();
        const std::string_view raw = content.substr(begin, end - begin);
        fields.emplace_back(_NeedsCare() ? _GetWithCare(raw, scratch) : raw);
        begin = end + 1;
    }
    return fields;
}

std::string_view nxCSVRow::_FindFar(std::size_t index) const
{
    if (_marks == nullptr)
        return {};
    CSVSeparators separators(_marks, _shift, content.size());
    for (std::size_t count = nxCSVMarks::Count(separators.GetWord()); count < index;
         count = nxCSVMarks::Count(separators.GetWord()))
    {
        index -= count;
        if (!separators.Advance())
            return {};
    }
    std::size_t begin = 0;
    for (; index != 0; --index)
        begin = separators.Take() + 1;
    return content.substr(begin, separators.Take() - begin);
}

std::size_t nxCSVRow::_CountFar() const
{
    if (_marks == nullptr)
        return 0;
    CSVSeparators separators(_marks, _shift, content.size());
    std::size_t count = 1;
    do
        count += nxCSVMarks::Count(separators.GetWord());
    while (separators.Advance());
    return count;
}

std::string_view nxCSVRow::_GetWithCare(std::string_view raw, std::string& scratch) const
{
    const nxCSVFieldText text(dialect);
    if (dialect.trimBlanks)
        raw = text.GetTrimmed(raw);
    return hasQuotes && text.IsQuoted(raw) ? std::string_view(scratch = text.GetUnquoted(raw)) : raw;
}
