// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_WORDS_H
#define NXTICK_WORDS_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
/// A word that an option takes, and what it means.
template <class Value>
struct Word
{
    std::string_view word;
    Value value;
};

/// The meaning of a word. @param what the option's name in a sentence. @throws Failure with the words that there are.
template <class Value, std::size_t count>
Value ReadWord(const Word<Value> (&words)[count], const std::string& what, const std::string& text)
{
    std::set<std::string> known;
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (words[i].word == text)
            return words[i].value;
        known.insert(std::string(words[i].word));
        (all += i == 0 ? "" : i + 1 == count ? " and " : ", ") += words[i].word;
    }
    const std::string suggestion = Suggestion(text, known);
    throw Failure("unknown " + what + " " + Quoted(text) + (suggestion.empty() ? "; there are " + all : suggestion));
}
}  // namespace nxtick

#endif
