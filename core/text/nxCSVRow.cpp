// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVRow.h"

#include "core/text/internal/nxCSVFieldText.h"

bool nxCSVDialect::CanDivide() const
{
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    const auto isUsable = [&](char c)
    { return c == '\0' || (c != separator && !isLineEnd(c) && !(trimBlanks && IsBlank(c))); };
    return !isLineEnd(separator) && isUsable(quote) && isUsable(comment) && (quote == '\0' || quote != comment);
}

bool nxCSVRow::HasFields() const
{
    const std::string_view text = dialect.trimBlanks ? nxCSVFieldText(dialect).GetTrimmed(content) : content;
    return !text.empty() && (dialect.comment == '\0' || content.front() != dialect.comment);
}

std::vector<std::string> nxCSVRow::GetFields() const
{
    std::vector<std::string> fields(_count);
    std::string scratch;
    for (std::size_t i = 0; i < _count; ++i)
        fields[i] = _NeedsCare() ? _GetWithCare(GetRawField(i), scratch) : GetRawField(i);
    return fields;
}

std::string_view nxCSVRow::_GetWithCare(std::string_view raw, std::string& scratch) const
{
    const nxCSVFieldText text(dialect);
    if (dialect.trimBlanks)
        raw = text.GetTrimmed(raw);
    return hasQuotes && text.IsQuoted(raw) ? std::string_view(scratch = text.GetUnquoted(raw)) : raw;
}
