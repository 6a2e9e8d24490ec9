// SPDX-License-Identifier: Apache-2.0
#include "core/app/internal/nxOptionHelp.h"

#include <algorithm>

#include "core/text/nxAlgorithm.h"

namespace
{
constexpr std::size_t helpWidth = 80;
constexpr std::size_t widestOptionColumn = 26;
constexpr std::size_t mostListedWords = 12;

// In characters: the continuation bytes of UTF-8 take no room.
std::size_t WidthOf(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}
std::vector<std::string> WordsOf(std::string_view text)
{
    std::vector<std::string> words;
    while (!text.empty())
    {
        words.emplace_back(text.substr(0, text.find(' ')));
        text.remove_prefix(std::min(text.size(), words.back().size() + 1));
    }
    return words;
}

// What all candidates begin with, up to an underscore.
std::string PrefixOf(const std::set<std::string>& candidates)
{
    if (candidates.empty())
        return {};
    const std::string& first = *candidates.begin();
    const std::string& last = *candidates.rbegin();
    const auto end = std::mismatch(first.begin(), first.end(), last.begin(), last.end()).first;
    const std::string common(first.begin(), end);
    return common.substr(0, common.rfind('_') + 1);
}
}  // namespace

// Continues a line that has as many characters as further lines are indented.
void nxOptionHelp::_AppendWords(const std::vector<std::string>& words, std::size_t indent, std::string& out)
{
    std::size_t column = indent;
    for (const std::string& word : words)
    {
        const std::size_t width = WidthOf(word);
        const bool isFirst = &word == &words.front();
        if (!isFirst && column + 1 + width > helpWidth)
        {
            out.append("\n").append(indent, ' ');
            column = indent + width;
            out += word;
            continue;
        }
        out.append(isFirst ? "" : " ").append(word);
        column += width + (isFirst ? 0 : 1);
    }
    out += '\n';
}

std::string nxOptionHelp::GetText(const std::vector<std::string>& use, std::string_view purpose,
                                  const std::vector<Row>& rows)
{
    std::string text = use.front() + " ";
    _AppendWords({use.begin() + 1, use.end()}, text.size(), text);
    text += '\n';
    _AppendWords(WordsOf(purpose), 0, text);
    text += '\n';

    std::size_t widest = 0;
    for (const auto& [option, meaning] : rows)
        if (const std::size_t width = WidthOf(option); width <= widestOptionColumn)
            widest = std::max(widest, width);
    const std::size_t indent = 2 + widest + 2;
    for (const auto& [option, meaning] : rows)
    {
        const std::size_t width = WidthOf(option);
        text.append("  ").append(option);
        if (meaning.empty())
        {
            text += '\n';
            continue;
        }
        if (width > widest)
            text.append("\n").append(indent, ' ');
        else
            text.append(widest - width + 2, ' ');
        _AppendWords(WordsOf(meaning), indent, text);
    }
    return text;
}

std::string nxOptionHelp::GetList(const std::vector<std::string>& words)
{
    std::string text;
    const std::size_t count = std::min(words.size(), mostListedWords);
    for (std::size_t i = 0; i < count; ++i)
        text.append(i == 0 ? "" : i + 1 == words.size() ? " or " : ", ").append(words[i]);
    return count < words.size() ? text.append(", ...") : text;
}

std::string nxOptionHelp::GetSuggestion(const std::string& text, const std::set<std::string>& candidates)
{
    std::vector<std::string> near = nxAlgorithm::GetNearMatches(candidates, text);
    if (const std::string prefix = PrefixOf(candidates); near.empty() && !prefix.empty())
    {
        std::set<std::string> endings;
        for (const std::string& candidate : candidates)
            endings.insert(candidate.substr(prefix.size()));
        for (const std::string& ending : nxAlgorithm::GetNearMatches(endings, text))
            near.push_back(prefix + ending);
    }
    return near.empty() ? std::string() : "; did you mean " + GetList(near) + "?";
}
