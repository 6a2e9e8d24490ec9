// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxRefusedTexts.h"

#include <algorithm>
#include <atomic>

#include "core/enum/inline/nxEnumTable.h"
#include "core/enum/internal/nxEnumInterval.h"

namespace
{
// A list that grows at its front and is never released. Constant-initialised, because rows may be refused before and
// after any initialiser of the library.
template <class Item>
struct Kept
{
    Item item;
    const Kept* previous;
};
// An item is added when it is complete (release), and readers load the front (acquire). Later additions continue the release,
// because each is one exchange.
template <class Item>
using KeptItems = std::atomic<const Kept<Item>*>;

template <class Item>
void KeepOnce(KeptItems<Item>& latest, const Item& item)
{
    const Kept<Item>* const known = latest.load(std::memory_order_acquire);
    for (const Kept<Item>* kept = known; kept != nullptr; kept = kept->previous)
        if (kept->item == item)
            return;
    auto* const added = new Kept<Item>{item, known};
    while (!latest.compare_exchange_weak(added->previous, added, std::memory_order_release, std::memory_order_acquire))
        continue;
}

// A class of an application or a plug-in. The name is copied, because a plug-in may be unloaded.
struct RegisteredClass
{
    std::string name;
    unsigned minimum;
    unsigned maximum;

    nxEnumInterval GetInterval() const { return {name.c_str(), minimum, maximum}; }
    bool operator==(const RegisteredClass&) const = default;
};

constinit KeptItems<std::string> toldSentences = nullptr;
constinit KeptItems<RegisteredClass> registeredClasses = nullptr;

template <class Visitor>
void VisitClasses(const Visitor& visit)
{
    for (const nxEnumInterval& interval : nxEnumInterval::OfLibrary())
        visit(interval);
    for (auto* kept = registeredClasses.load(std::memory_order_acquire); kept != nullptr; kept = kept->previous)
        visit(kept->item.GetInterval());
}

std::string InQuotes(std::string_view text) { return std::string(1, '\'').append(text).append(1, '\''); }

// @return " of " and the name of the class that has the value; empty when it is not known.
std::string OfClass(unsigned value)
{
    std::string text;
    VisitClasses(
        [&](const nxEnumInterval& interval)
        {
            if (text.empty() && interval.Has(value))
                text.append(" of ").append(interval.name);
        });
    return text;
}

std::string Describe(const nxEnumInterval& interval)
{
    return std::string(interval.name) + " (" + std::to_string(interval.minimum) + " to " +
           std::to_string(interval.maximum) + ")";
}

void Tell(const std::string& subject, const std::string& reason)
{
    KeepOnce(toldSentences, subject + " is not registered: " + reason);
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
    const std::int64_t owner = nxEnumTable::Find(shortDescription);
    return std::to_string(owner) + OfClass(static_cast<unsigned>(owner)) + " has that identifier";
}
}  // namespace

std::vector<std::string> nxRefusedTexts::Get()
{
    std::vector<std::string> all;
    for (auto* kept = toldSentences.load(std::memory_order_acquire); kept != nullptr; kept = kept->previous)
        all.push_back(kept->item);
    std::reverse(all.begin(), all.end());
    return all;
}

void nxRefusedTexts::AddClass(std::string_view className, unsigned minimum, unsigned maximum) noexcept
{
    IfThereIsMemory(
        [&]
        {
            const RegisteredClass added{std::string(className), minimum, maximum};
            VisitClasses(
                [&, interval = added.GetInterval()](const nxEnumInterval& known)
                {
                    const bool isTheSame =
                        known.name == added.name && known.minimum == minimum && known.maximum == maximum;
                    if (!isTheSame && known.Overlaps(interval))
                        KeepOnce(toldSentences,
                                 Describe(interval) + " and " + Describe(known) + " have values in common");
                });
            KeepOnce(registeredClasses, added);
        });
}

void nxRefusedTexts::AddValue(unsigned value, std::string_view shortDescription) noexcept
{
    if (const nxEnumTable::Texts* const texts = nxEnumTable::Find(value);
        texts == nullptr || texts->first != shortDescription)
        IfThereIsMemory(
            [&]
            {
                Tell(std::to_string(value) + " " + InQuotes(shortDescription) + OfClass(value),
                     ReasonOf(value, shortDescription));
            });
}

void nxRefusedTexts::AddOutside(unsigned value, std::string_view shortDescription) noexcept
{
    IfThereIsMemory(
        [&] {
            Tell(std::to_string(value) + " " + InQuotes(shortDescription), "it lies outside the interval of its class");
        });
}

void nxRefusedTexts::AddFlag(std::string_view className, unsigned long long word, std::string_view shortDescription,
                             std::string_view kept) noexcept
{
    if (shortDescription != kept)
        IfThereIsMemory(
            [&]
            {
                Tell(std::string(className) + " " + std::to_string(word) + " " + InQuotes(shortDescription),
                     "the flag has the text " + InQuotes(kept));
            });
}
