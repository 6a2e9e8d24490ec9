// SPDX-License-Identifier: Apache-2.0
#include "CsvDialect.h"

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
std::string GetField(std::string_view text, const nxCSVDialect& dialect)
{
    const char quote = dialect.quote;
    const bool hasQuotes = quote != '\0';
    const char special[] = {dialect.separator, '\r', '\n', quote};
    if (text.find_first_of({special, hasQuotes ? sizeof special : sizeof special - 1}) == std::string_view::npos)
        return std::string(text);
    if (!hasQuotes)
        throw Failure(Quoted(text) + " cannot be written in a field without quotes");
    std::string field(1, quote);
    for (const char c : text)
        field.append(c == quote ? 2 : 1, c);
    return field += quote;
}
}  // namespace nxtick
