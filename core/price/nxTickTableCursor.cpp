#include "core/price/nxTickTableCursor.h"

#include "core/price/internal/nxTickRun.h"

std::size_t nxTickTableCursor::_Search(const nxDecimal& price)
{
    const std::size_t stretch = _table->_grid.Find(price);
    if (stretch != nxTickGrid::NotFound && stretch == _lastStretch)
        _table->_grid.Fill(stretch, price, _zone);
    _lastStretch = stretch;
    return stretch;
}

bool nxTickTableCursor::_Relocate(const nxDecimal& price)
{
    if (_zone.Contains(price))
        return true;
    const std::size_t stretch = _table->_grid.Find(price);
    if (stretch == nxTickGrid::NotFound)
        return false;
    _table->_grid.Fill(stretch, price, _zone);
    return true;
}

nxVariableTickTable::iterator nxTickTableCursor::_FindRange(const nxDecimal& price)
{
    if (_Relocate(price))
        return _table->_ranges.begin() + _zone.band;
    return _table->_Scan(nxVariableTickTable::_Magnitude(price));
}

const nxDecimal& nxTickTableCursor::_FindTick(nxDecimal price)
{
    if (const std::size_t stretch = _Search(price); stretch != nxTickGrid::NotFound)
        return _table->_grid.GetIncrement(stretch);
    const nxDecimal magnitude = nxVariableTickTable::_Magnitude(price);
    const auto band = _table->_Scan(magnitude);
    return band == _table->_ranges.end() ? nxVariableTickTable::_ReportUnknownBand() : _table->_TickIn(band, magnitude);
}

unsigned char nxTickTableCursor::NumberOfDecimalPlaces(const nxDecimal& price)
{
    const auto band = _FindRange(price);
    return band == _table->_ranges.end() ? static_cast<unsigned char>(0) : band->second.GetDecimalPlaces();
}

nxDecimal nxTickTableCursor::_Step(bool up, std::uint64_t ticks, nxDecimal price)
{
    // A run that wraps comes by the same stretches over and over; then those that it learnt are found faster.
    unsigned relocations = 1000;
    nxTickRun run(*_table, up);
    while (ticks != 0 && price.IsValid())
    {
        std::uint64_t done = run.Leap(price, ticks);
        if (done == 0 && relocations != 0 && --relocations != 0 && _Relocate(price))
            done = _zone.Step(up, ticks, price);
        if (done == 0)
        {
            run.Watch(price);
            if (!_StepByDecimals(up, price))
                break;
            done = 1;
        }
        ticks -= done;
    }
    return price;
}

// False when the price stays as it is, as it then does at every further step.
bool nxTickTableCursor::_StepByDecimals(bool up, nxDecimal& price)
{
    const auto band = _FindRange(price);
    if (band == _table->_ranges.end())
    {
        nxVariableTickTable::_ReportUnknownBand();
        return false;
    }
    const nxDecimal before = price;
    _table->_StepFrom(band, up, price);
    return price.GetValue() != before.GetValue() || price.GetDecimalPlaces() != before.GetDecimalPlaces();
}

nxDecimal nxTickTableCursor::_Round(const nxRoundingMethodEnum& method, nxDecimal price)
{
    if (price.IsValid())
        price.Round(_FindTick(price), method);
    return price;
}
