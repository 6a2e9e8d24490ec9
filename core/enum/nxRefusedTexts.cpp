// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxRefusedTexts.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

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
bool IsBetween(const Kept<Item>* first, const Kept<Item>* end, const Item& item)
{
    while (first != end && !(first->item == item))
        first = first->previous;
    return first != end;
}

// @return what was added, which continues with all that was added before; null for an item that was there.
template <class Item>
const Kept<Item>* KeepOnce(KeptItems<Item>& latest, const Item& item)
{
    const Kept<Item>* known = latest.load(std::memory_order_acquire);
    if (IsBetween<Item>(known, nullptr, item))
        return nullptr;
    std::unique_ptr<Kept<Item>> added(new Kept<Item>{item, known});
    // What other threads have added meanwhile is looked at as well.
    while (!latest.compare_exchange_weak(added->previous, added.get(), std::memory_order_release,
                                         std::memory_order_acquire))
        if (IsBetween(added->previous, std::exchange(known, added->previous), item))
            return nullptr;
    return added.release();
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

// One for each row: which classes overlap, and why a row is refused, may have changed when it comes again.
struct ToldSentence
{
    std::string subject;
    std::string text;

    bool operator==(const ToldSentence& other) const { return subject == other.subject; }
};

constinit KeptItems<ToldSentence> toldSentences = nullptr;
constinit KeptItems<RegisteredClass> registeredClasses = nullptr;

// The library's, and those from @p latest on.
template <class Visitor>
void VisitClasses(const Kept<RegisteredClass>* latest, const Visitor& visit)
{
    for (const nxEnumInterval& interval : nxEnumInterval::OfLibrary())
        visit(interval);
    for (; latest != nullptr; latest = latest->previous)
        visit(latest->item.GetInterval());
}

std::string InQuotes(std::string_view text) { return std::string(1, '\'').append(text).append(1, '\''); }

std::string Describe(const nxEnumInterval& interval)
{
    return std::string(interval.name) + " (" + std::to_string(interval.minimum) + " to " +
           std::to_string(interval.maximum) + ")";
}

void TellOverlap(const nxEnumInterval& interval, const nxEnumInterval& known)
{
    const std::string text = Describe(interval) + " and " + Describe(known) + " have values in common";
    KeepOnce(toldSentences, {text, text});
}

// @return " of " and the name of the class that has the value; empty when it is not known.
std::string OfClass(unsigned value)
{
    std::string text;
    VisitClasses(registeredClasses.load(std::memory_order_acquire),
                 [&](const nxEnumInterval& interval)
                 {
                     if (text.empty() && interval.Has(value))
                         text.append(" of ").append(interval.name);
                 });
    return text;
}

// @param of the class of the row, which is not what tells it from others.
void Tell(const std::string& subject, const std::string& of, const std::string& reason)
{
    KeepOnce(toldSentences, {subject, subject + of + " is not registered: " + reason});
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
    if (const nxEnumTable::Texts* const texts = nxEnumTable::FindAnywhere(value))
        return "the value has the identifier " + InQuotes(texts->first);
    if (shortDescription.size() > nxEnumTable::MaximumTextSize)
        return "the identifier is longer than " + std::to_string(nxEnumTable::MaximumTextSize) + " characters";
    const std::int64_t owner = nxEnumTable::FindAnywhere(shortDescription);
    return std::to_string(owner) + OfClass(static_cast<unsigned>(owner)) + " has that identifier";
}
}  // namespace

std::vector<std::string> nxRefusedTexts::Get()
{
    std::vector<std::string> all;
    for (auto* kept = toldSentences.load(std::memory_order_acquire); kept != nullptr; kept = kept->previous)
        all.push_back(kept->item.text);
    std::reverse(all.begin(), all.end());
    return all;
}

void nxRefusedTexts::AddClass(std::string_view className, unsigned minimum, unsigned maximum) noexcept
{
    IfThereIsMemory(
        [&]
        {
            // A pair is found by the class that is added later, and only when that comes for the first time.
            const Kept<RegisteredClass>* const added =
                KeepOnce(registeredClasses, {std::string(className), minimum, maximum});
            if (added == nullptr)
                return;
            const nxEnumInterval interval = added->item.GetInterval();
            VisitClasses(added->previous,
                         [&](const nxEnumInterval& known)
                         {
                             const bool isTheSame =
                                 known.name == added->item.name && known.minimum == minimum && known.maximum == maximum;
                             if (!isTheSame && known.Overlaps(interval))
                                 TellOverlap(interval, known);
                         });
        });
}

void nxRefusedTexts::AddValue(unsigned value, std::string_view shortDescription) noexcept
{
    if (const nxEnumTable::Texts* const texts = nxEnumTable::FindAnywhere(value);
        texts == nullptr || texts->first != shortDescription)
        IfThereIsMemory(
            [&] {
                Tell(std::to_string(value) + " " + InQuotes(shortDescription), OfClass(value),
                     ReasonOf(value, shortDescription));
            });
}

void nxRefusedTexts::AddOutside(unsigned value, std::string_view shortDescription) noexcept
{
    IfThereIsMemory(
        [&] {
            Tell(std::to_string(value) + " " + InQuotes(shortDescription), "",
                 "it lies outside the interval of its class");
        });
}

void nxRefusedTexts::AddFlag(std::string_view className, unsigned long long word, std::string_view shortDescription,
                             std::string_view kept) noexcept
{
    if (shortDescription != kept)
        IfThereIsMemory(
            [&]
            {
                Tell(std::string(className) + " " + std::to_string(word) + " " + InQuotes(shortDescription), "",
                     "the flag has the text " + InQuotes(kept));
            });
}
