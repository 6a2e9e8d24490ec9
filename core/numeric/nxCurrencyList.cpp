// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxCurrencyList.h"

#include <atomic>
#include <string_view>
#include <utility>

#include "core/numeric/internal/nxListedRows.h"
#include "core/text/nxStringHelper.h"

namespace
{
nxCurrencyList MakeBuiltIn()
{
    struct Listed
    {
        const char* letters;
        unsigned short number;
        unsigned char minorUnits;
        const char* name;
    };
    constexpr unsigned char NoMinorUnits = nxCurrencyList::NoMinorUnits;
    static constexpr Listed listed[] = {
#define NX_CURRENCY(letters, number, minorUnits, name) {letters, number, minorUnits, name},
#include "core/numeric/internal/nxCurrencies.inc"
#undef NX_CURRENCY
    };
    nxCurrencyList list;
    for (const Listed& row : listed)
        static_cast<void>(list.Set({nxCurrency(row.letters), row.number, row.minorUnits, row.name}));
    return list;
}

// A list that was put into force, and the one before it: all stay reachable, and none is destroyed.
struct KeptCurrencies
{
    nxCurrencyList list;
    const KeptCurrencies* before;
};

// Null while the library's own list is in force.
// SetCurrent() publishes a list (release), and GetCurrent() loads it (acquire). Relaxed where SetCurrent() reads what was there
// before, because it only keeps the address.
constinit std::atomic<const KeptCurrencies*> currentCurrencies{nullptr};

// An empty field leaves the value as it is.
template <class Integer>
nxErrorEnum ReadOptional(std::string_view field, Integer& value)
{
    return field.empty() ? nxErrorEnum() : nxStringHelper::SetFromStringExact(field, value);
}

nxErrorEnum ReadCurrency(nxListedRows& listed, nxCurrencyList::Row& row)
{
    row = {};
    row.currency = nxCurrency(listed.GetField(0));
    const nxErrorEnum error = ReadOptional(listed.GetField(1), row.number);
    // 255 stands for none.
    unsigned minorUnits = nxCurrencyList::NoMinorUnits;
    const std::string_view field = listed.GetField(2);
    const nxErrorEnum unitsError = ReadOptional(field, minorUnits);
    if (row.currency.IsNull() || error == NX_ERR_INVALID_PARAMETER || unitsError == NX_ERR_INVALID_PARAMETER)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (!error.IsOK() || !unitsError.IsOK() || (minorUnits > nxCurrencyList::MaxMinorUnits && !field.empty()))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    row.minorUnits = static_cast<unsigned char>(minorUnits);
    row.name = listed.GetField(3);
    return nxErrorEnum();
}
}  // namespace

const nxCurrencyList& nxCurrencyList::GetBuiltIn()
{
    static const nxCurrencyList& list = *new nxCurrencyList(MakeBuiltIn());
    return list;
}

const nxCurrencyList& nxCurrencyList::GetCurrent()
{
    const KeptCurrencies* const current = currentCurrencies.load(std::memory_order_acquire);
    return current != nullptr ? current->list : GetBuiltIn();
}

void nxCurrencyList::SetCurrent(const nxCurrencyList& list)
{
    auto* const kept = new KeptCurrencies{list, currentCurrencies.load(std::memory_order_relaxed)};
    while (!currentCurrencies.compare_exchange_weak(kept->before, kept, std::memory_order_release,
                                                    std::memory_order_relaxed))
    {
    }
}

const nxCurrencyList::Row* nxCurrencyList::Find(nxCurrency currency) const
{
    const std::size_t place = _currencies.Find(currency.GetKey());
    return place != nxKeyIndex::None ? &_rows[place] : nullptr;
}

nxErrorEnum nxCurrencyList::Set(const Row& row)
{
    if (row.currency.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (row.number > MaxNumber || (row.minorUnits > MaxMinorUnits && row.minorUnits != NoMinorUnits))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    if (const std::size_t place = _currencies.Find(row.currency.GetKey()); place != nxKeyIndex::None)
    {
        _rows[place] = row;
        return nxErrorEnum();
    }
    Row added = row;
    // Room first, so that a lack of memory changes neither.
    if (_rows.size() == _rows.capacity())
        _rows.reserve(2 * _rows.size() + 1);
    _currencies.Append(row.currency.GetKey(), _rows.size());
    _rows.push_back(std::move(added));
    return nxErrorEnum();
}

nxErrorEnum nxCurrencyList::Remove(nxCurrency currency)
{
    if (Find(currency) == nullptr)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    nxCurrencyList rest;
    for (const Row& row : _rows)
        if (row.currency != currency)
            static_cast<void>(rest.Set(row));  // its rows have passed before
    *this = std::move(rest);
    return nxErrorEnum();
}

nxErrorEnum nxCurrencyList::SetFromCSV(nxCSVParser& rows, unsigned long long& failedLine)
{
    constexpr std::size_t fewestFields = 3, mostFields = 4;
    const auto readRow = [](nxListedRows& listed, nxCurrencyList& list)
    {
        Row row;
        const nxErrorEnum error = ReadCurrency(listed, row);
        if (!error.IsOK())
            return error;
        return list.Find(row.currency) == nullptr ? list.Set(row) : nxErrorEnum(NX_ERR_DUPLICATE_MATCH);
    };
    return nxListedRows::ReadAll(rows, fewestFields, mostFields, readRow, *this, failedLine);
}

// What nxCurrency says is known; a list is above its header.

bool nxCurrency::IsKnown() const { return nxCurrencyList::GetCurrent().Find(*this) != nullptr; }

unsigned nxCurrency::GetNumericCode() const
{
    const nxCurrencyList::Row* const row = nxCurrencyList::GetCurrent().Find(*this);
    return row != nullptr ? row->number : 0;
}

std::string_view nxCurrency::GetName() const
{
    const nxCurrencyList::Row* const row = nxCurrencyList::GetCurrent().Find(*this);
    return row != nullptr ? std::string_view(row->name) : std::string_view();
}

nxErrorEnum nxCurrency::GetMinorUnits(unsigned char& places) const
{
    if (IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const nxCurrencyList::Row* const row = nxCurrencyList::GetCurrent().Find(*this);
    if (row == nullptr || row->minorUnits == nxCurrencyList::NoMinorUnits)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    places = row->minorUnits;
    return nxErrorEnum();
}
