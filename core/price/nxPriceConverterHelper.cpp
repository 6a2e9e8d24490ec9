// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxPriceConverterHelper.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <limits>
#include <utility>

#include "core/price/nxDecimalPriceConverter.h"
#include "core/price/nxFractionalPriceConverter.h"
#include "core/price/nxModifiedFractionalPriceConverter.h"

namespace
{
typedef std::unique_ptr<const nxPriceConverter> OwnedConverter;

// Takes the pieces of a notation's text off its front.
class NotationText
{
public:
    explicit NotationText(std::string_view text) : _rest(text) {}

    bool Take(std::string_view piece)
    {
        if (_rest.substr(0, piece.size()) != piece)
            return false;
        _rest.remove_prefix(piece.size());
        return true;
    }

    // A whole number, the largest one for one that does not fit; false when there is none.
    template <class Integer>
    bool TakeNumber(Integer& number)
    {
        const auto [end, error] = std::from_chars(_rest.data(), _rest.data() + _rest.size(), number);
        _rest.remove_prefix(static_cast<std::size_t>(end - _rest.data()));
        if (error == std::errc::result_out_of_range)
            number = std::numeric_limits<Integer>::max();
        return error != std::errc::invalid_argument;
    }

    // A decimal, "no change" for one that does not fit; false when there is none.
    bool TakeDecimal(nxDecimal& number)
    {
        const nxErrorEnum error = number.SetFromStringExact(TakeRest(), '.');
        if (error == nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE))
            number.SetNoChange();
        return error != nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }

    std::string_view TakeRest() { return std::exchange(_rest, std::string_view()); }

    // The mark at the end, or the usual one when nothing is left; false when more is left.
    bool TakeMark(char& mark)
    {
        const std::string_view rest = TakeRest();
        mark = rest.empty() ? '\'' : rest.front();
        return rest.size() <= 1;
    }

private:
    std::string_view _rest;
};

OwnedConverter MakeDecimal(NotationText text)
{
    unsigned char places = 0;
    int shift = 0;
    nxDecimal tick = nxDecimal::GetNullDecimal();
    if (!text.TakeNumber(places) || (text.Take("*") && !text.TakeNumber(shift)) ||
        (text.Take("/") && !text.TakeDecimal(tick)) || !text.TakeRest().empty())
        return nullptr;
    return std::make_unique<const nxDecimalPriceConverter>(places, shift, tick);
}

OwnedConverter MakeFraction(NotationText text)
{
    unsigned denominator = 0;
    char mark = '\0';
    if (!text.TakeNumber(denominator) || !text.TakeMark(mark))
        return nullptr;
    return std::make_unique<const nxFractionalPriceConverter>(denominator, mark);
}

OwnedConverter MakeModified(NotationText text)
{
    typedef nxModifiedFractionalPriceConverter::SubDigits SubDigits;
    unsigned denominator = 0, subDenominator = 0;
    unsigned char digits = 1;
    char mark = '\0';
    if (!text.TakeNumber(denominator) || !text.Take("/") || !text.TakeNumber(subDenominator) ||
        (text.Take("/") && !text.TakeNumber(digits)))
        return nullptr;
    const SubDigits subDigits = text.Take("+") ? SubDigits::Numerals : SubDigits::CutDecimals;
    if (!text.TakeMark(mark))
        return nullptr;
    return std::make_unique<const nxModifiedFractionalPriceConverter>(denominator, subDenominator, digits, subDigits,
                                                                      mark);
}

// A null pointer for a text of another form.
OwnedConverter MakeConverter(std::string_view notation)
{
    NotationText text(notation);
    if (text.Take("DECIMAL:"))
        return MakeDecimal(text);
    if (text.Take("FRACTION:"))
        return MakeFraction(text);
    return text.Take("MODIFIED:") ? MakeModified(text) : nullptr;
}

// The converters of the process, a list that only grows, so that neither readers nor forks need a lock.
struct KeptConverter
{
    OwnedConverter converter;
    const KeptConverter* next = nullptr;
};

// Get() adds a converter that is complete (release), and reads those before it, also after an exchange that failed (acquire).
std::atomic<const KeptConverter*> firstKeptConverter{nullptr};

const nxPriceConverter* FindKept(const KeptConverter* from, const KeptConverter* end, const std::string& notation)
{
    for (; from != end; from = from->next)
        if (from->converter->GetNotation() == notation)
            return from->converter.get();
    return nullptr;
}

// A certain way of writing fractions.
struct KnownFraction
{
    std::string_view indicator;  // empty: none is known
    unsigned mainFraction;
    unsigned subFraction;
    unsigned digits;
    const char* notation;
};

constexpr KnownFraction knownFractions[] = {
    {"H", 2, 0, 1, "FRACTION:2"},     {"Q", 4, 0, 1, "FRACTION:4"},       {"E", 8, 0, 1, "FRACTION:8"},
    {"S", 16, 0, 2, "FRACTION:16"},   {"T", 32, 0, 2, "FRACTION:32"},     {"X", 64, 0, 2, "FRACTION:64"},
    {"O", 128, 0, 3, "FRACTION:128"}, {"F", 256, 0, 3, "FRACTION:256"},   {"U", 32, 2, 3, "MODIFIED:32/2"},
    {"V", 32, 4, 3, "MODIFIED:32/4"}, {"Z", 32, 4, 4, "MODIFIED:32/4/2"}, {"", 32, 8, 3, "MODIFIED:32/8"},
    {"Y", 64, 2, 3, "MODIFIED:64/2"},
};

// Sets the notation to that of the first row that the condition holds for.
template <class Condition>
nxErrorEnum FindFraction(const Condition& condition, std::string& notation)
{
    const auto* const found = std::find_if(std::begin(knownFractions), std::end(knownFractions), condition);
    if (found == std::end(knownFractions))
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    notation = found->notation;
    return nxErrorEnum();
}
}  // namespace

const nxPriceConverter* nxPriceConverterHelper::Get(const std::string& notation)
{
    const KeptConverter* first = firstKeptConverter.load(std::memory_order_acquire);
    if (const nxPriceConverter* const kept = FindKept(first, nullptr, notation))
        return kept;
    auto entry = std::make_unique<KeptConverter>();
    if (!Create(notation, entry->converter).IsOK())
        return nullptr;
    for (entry->next = first; !firstKeptConverter.compare_exchange_weak(first, entry.get(), std::memory_order_acq_rel);
         entry->next = first)
        if (const nxPriceConverter* const kept = FindKept(first, entry->next, notation))  // another thread was faster
            return kept;
    return entry.release()->converter.get();
}

nxErrorEnum nxPriceConverterHelper::Create(const std::string& notation, OwnedConverter& converter)
{
    OwnedConverter made = MakeConverter(notation);
    if (made == nullptr)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (!made->IsValid())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    if (made->GetNotation() != notation)  // another spelling
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    converter = std::move(made);
    return nxErrorEnum();
}

nxErrorEnum nxPriceConverterHelper::GetNotationOfFractions(unsigned mainFraction, unsigned subFraction, unsigned digits,
                                                           std::string& notation)
{
    return FindFraction(
        [=](const KnownFraction& known)
        { return known.mainFraction == mainFraction && known.subFraction == subFraction && known.digits == digits; },
        notation);
}

nxErrorEnum nxPriceConverterHelper::GetNotationOfIndicator(std::string_view fractionalIndicator, std::string& notation)
{
    if (fractionalIndicator.size() == 1 && '0' <= fractionalIndicator.front() && fractionalIndicator.front() <= '7')
    {
        notation = "DECIMAL:";
        notation += fractionalIndicator;
        return nxErrorEnum();
    }
    if (fractionalIndicator == "R")
    {
        notation = "DECIMAL:4/0.00025";  // four decimals: with three, multiples collide; with five, nothing is cut
        return nxErrorEnum();
    }
    return FindFraction([=](const KnownFraction& known)
                        { return known.indicator == fractionalIndicator && !known.indicator.empty(); },
                        notation);
}
