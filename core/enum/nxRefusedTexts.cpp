#include "core/enum/nxRefusedTexts.h"

#include <algorithm>
#include <atomic>

#include "core/enum/inline/nxEnumTable.h"

namespace
{
struct Refusal
{
    std::string sentence;
    Refusal* previous;
};

// Constant-initialised and never released, because rows may be refused before and after any initialiser of the library.
constinit std::atomic<Refusal*> latest = nullptr;

std::string InQuotes(std::string_view text) { return std::string(1, '\'').append(text).append(1, '\''); }

void Tell(const std::string& subject, std::string_view shortDescription, const std::string& reason)
{
    const std::string sentence = subject + " " + InQuotes(shortDescription) + " is not registered: " + reason;
    Refusal* previous = latest.load(std::memory_order_acquire);
    for (const Refusal* refusal = previous; refusal != nullptr; refusal = refusal->previous)
        if (refusal->sentence == sentence)
            return;
    Refusal* const added = new Refusal{sentence, previous};
    while (!latest.compare_exchange_weak(added->previous, added, std::memory_order_release, std::memory_order_acquire))
        continue;
}

// When there is no memory for a sentence, registration continues without it.
template <class Action>
void IfThereIsMemory(Action action) noexcept
{
    try
    {
        action();
    }
    catch (...)
    {
    }
}

std::string ReasonOf(unsigned value, std::string_view shortDescription)
{
    if (const nxEnumTable::Texts* const texts = nxEnumTable::Find(value))
        return "the value has the identifier " + InQuotes(texts->first);
    if (shortDescription.size() > nxEnumTable::MaximumTextSize)
        return "the identifier is longer than " + std::to_string(nxEnumTable::MaximumTextSize) + " characters";
    return std::to_string(nxEnumTable::Find(shortDescription)) + " has that identifier";
}
}  // namespace

std::vector<std::string> nxRefusedTexts::Get()
{
    std::vector<std::string> sentences;
    for (const Refusal* refusal = latest.load(std::memory_order_acquire); refusal != nullptr;
         refusal = refusal->previous)
        sentences.push_back(refusal->sentence);
    std::reverse(sentences.begin(), sentences.end());
    return sentences;
}

void nxRefusedTexts::AddValue(unsigned value, std::string_view shortDescription) noexcept
{
    if (const nxEnumTable::Texts* const texts = nxEnumTable::Find(value);
        texts == nullptr || texts->first != shortDescription)
        IfThereIsMemory([&] { Tell(std::to_string(value), shortDescription, ReasonOf(value, shortDescription)); });
}

void nxRefusedTexts::AddOutside(unsigned value, std::string_view shortDescription) noexcept
{
    IfThereIsMemory([&]
                    { Tell(std::to_string(value), shortDescription, "it lies outside the interval of its class"); });
}

void nxRefusedTexts::AddFlag(std::string_view className, unsigned long long word, std::string_view shortDescription,
                             std::string_view kept) noexcept
{
    if (shortDescription != kept)
        IfThereIsMemory(
            [&]
            {
                Tell(std::string(className) + " " + std::to_string(word), shortDescription,
                     "the flag has the text " + InQuotes(kept));
            });
}
