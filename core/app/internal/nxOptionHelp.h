// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INTERNAL_NXOPTIONHELP_H
#define CORE_APP_INTERNAL_NXOPTIONHELP_H

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Lays out the help of a program in lines of at most 80 characters, broken between words. A longer word has a line of its
/// own.
class nxOptionHelp
{
public:
    using Row = std::pair<std::string, std::string>;  ///< An option, and what it means.

    nxOptionHelp() = delete;

    /// @param use the program and its options; none of them is broken.
    static std::string GetText(const std::vector<std::string>& use, std::string_view purpose,
                               const std::vector<Row>& rows);

    /// @return "a, b or c"; at most twelve words, then "...".
    static std::string GetList(const std::vector<std::string>& words);

    /// @return "; did you mean a or b?" with the candidates that a mistyped text may mean; empty without any. A text may
    ///         lack what all candidates begin with up to an underscore: "nearest" for NX_ROUNDING_METHOD_NEAREST.
    static std::string GetSuggestion(const std::string& text, const std::set<std::string>& candidates);

private:
    static void _AppendWords(const std::vector<std::string>& words, std::size_t indent, std::string& out);
};

#endif
