#ifndef TESTS_PRICE_TRANSCRIBEDTICKTABLE_H
#define TESTS_PRICE_TRANSCRIBEDTICKTABLE_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"

/// The rules of a tick table written down with decimal comparisons and sums alone, one band after the other: what the
/// library's tables, cursors and spans have to agree with.
class TranscribedTickTable
{
public:
    typedef std::vector<std::pair<nxDecimal, nxDecimal>> Bands;

    explicit TranscribedTickTable(const Bands& bands) : _bands(bands) {}

    // The number of bands when there is none.
    std::size_t Find(const nxDecimal& price) const
    {
        const nxDecimal magnitude = Magnitude(price);
        std::size_t band = 0;
        if (magnitude.IsNegative())
            return _bands.size();
        while (band < _bands.size() && _bands[band].first < magnitude)
            ++band;
        return band;
    }

    nxDecimal Tick(const nxDecimal& price) const
    {
        const std::size_t band = Find(price);
        if (band == _bands.size())
            return nxDecimal::GetNullDecimal();
        if (band != 0 && Magnitude(price) < _bands[band - 1].first + _bands[band - 1].second)
            return _bands[band - 1].second;
        return _bands[band].second;
    }

    unsigned char Places(const nxDecimal& price) const
    {
        const std::size_t band = Find(price);
        return band == _bands.size() ? static_cast<unsigned char>(0) : _bands[band].second.GetDecimalPlaces();
    }

    nxDecimal Rounded(nxDecimal price, const nxRoundingMethodEnum& method) const
    {
        if (price.IsValid())
            price.Round(Tick(price), method);
        return price;
    }

    // Steps a price that is not negative; a negative one is left to its mirror image.
    nxDecimal Stepped(nxDecimal price, bool up) const
    {
        if (!price.IsValid() || Find(price) == _bands.size())
            return price;
        if (price.IsNegative())
        {
            price.InvertSign();
            price = Stepped(price, !up);
            price.InvertSign();
            return price;
        }
        std::size_t band = Find(price);
        if (up)
        {
            price += _bands[band].second;
            if (price.IsPositive() && price != _bands[band].first && !(price < _bands[band].first))
                band += band + 1 < _bands.size() ? 1 : 0;
        }
        else
        {
            if (band != 0 && price - _bands[band - 1].second <= _bands[band - 1].first)
                --band;
            price -= _bands[band].second;
            // The most negative mantissa has no magnitude and exceeds every bound.
            if (price.IsNegative() && (price.GetValue() == INT64_MIN || nxDecimal::Abs(price) > _bands[band].first))
                band += band + 1 < _bands.size() ? 1 : 0;
        }
        price.SetDecimalPlaces(_bands[band].second.GetDecimalPlaces(), true);
        return price;
    }

private:
    static nxDecimal Magnitude(const nxDecimal& price)
    {
        return price.IsValid() ? nxDecimal::Abs(price) : nxDecimal(0, 0);
    }

    Bands _bands;
};

#endif
