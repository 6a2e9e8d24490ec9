// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_PRICE_TRANSCRIBEDTICKTABLE_H
#define TESTS_PRICE_TRANSCRIBEDTICKTABLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"

/// The rules of a tick table, written with decimal comparisons and wide integers alone, one band after the other. Tables,
/// cursors and spans of the library must agree with them.
class TranscribedTickTable
{
public:
    typedef std::vector<std::pair<nxDecimal, nxDecimal>> Bands;

    explicit TranscribedTickTable(const Bands& bands) : _bands(bands) {}

    // The index of the price's band, or the number of bands if it has none.
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
        if (band != 0 && Magnitude(price) < Sum(_bands[band - 1].first, _bands[band - 1].second, 1))
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

    // A negative price takes the step of its mirror image.
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
            price = Sum(price, _bands[band].second, 1);
            if (price.IsPositive() && price != _bands[band].first && !(price < _bands[band].first))
                band += band + 1 < _bands.size() ? 1 : 0;
        }
        else
        {
            if (band != 0 && StepsOnto(price, _bands[band - 1]))
                --band;
            price = Sum(price, _bands[band].second, -1);
            // The most negative mantissa has no magnitude and exceeds every bound.
            if (price.IsNegative() && (price.GetValue() == INT64_MIN || nxDecimal::Abs(price) > _bands[band].first))
                band += band + 1 < _bands.size() ? 1 : 0;
        }
        price.SetDecimalPlaces(_bands[band].second.GetDecimalPlaces(), true);
        return price;
    }

    // Whether the result lies one tick above the price (1) or below it (-1), or less than one tick away (0), and fits.
    static bool IsExact(const nxDecimal& price, const nxDecimal& result, const nxDecimal& tick, int ticks)
    {
        const int places = std::max({price.GetDecimalPlaces(), result.GetDecimalPlaces(), tick.GetDecimalPlaces()});
        Wide p = 0, r = 0, t = 0;
        if (places > 18 || !Scale(price, places, p) || !Scale(result, places, r) || !Scale(tick, places, t))
            return false;
        return ticks == 0 ? r - p < t && p - r < t : Fits(p) && Fits(t) && Fits(r) && Fits(-r) && r == p + ticks * t;
    }
    bool IsExactStep(const nxDecimal& price, const nxDecimal& stepped, int ticks) const
    {
        return Find(price) != _bands.size() &&
               std::any_of(_bands.begin(), _bands.end(),
                           [&](const auto& band) { return IsExact(price, stepped, band.second, ticks); });
    }

    // For a price with a value and a band, and bands of at most 19 places.
    bool IsValid(const nxDecimal& price) const
    {
        const auto [floor, ceiling] = Units(price);
        return floor == ceiling && IsValid(floor);
    }

    // The closest valid price on one side of a price; null where 64 bits do not hold it. All multiples next to the price and to
    // the points at which ticks change are looked at.
    nxDecimal Next(const nxDecimal& price, bool up) const
    {
        const auto [floor, ceiling] = Units(price);
        std::vector<Wide> starts = {floor, 0};
        for (std::size_t band = 0; band + 1 < _bands.size(); ++band)
            for (const Wide point : {Bound(band), Bound(band) + Tick(band)})
                starts.insert(starts.end(), {point, -point});
        const Wide farthest = Bound(_bands.size() - 1) + 1;
        Wide best = up ? farthest : -farthest;
        for (std::size_t band = 0; band < _bands.size(); ++band)
            for (const Wide start : starts)
                for (const int ticks : {-1, 0, 1})
                    if (const Wide multiple = (start / Tick(band) + ticks) * Tick(band);
                        (up ? floor < multiple && multiple < best : best < multiple && multiple < ceiling) &&
                        IsValid(multiple))
                        best = multiple;
        const std::size_t band = BandOfTick(best);
        if (band == _bands.size())
            return nxDecimal::GetNullDecimal();
        const unsigned char places = _bands[band].second.GetDecimalPlaces();
        best /= Units(D(1, places)).first;
        return Fits(best) && best != INT64_MIN ? D(best, places) : nxDecimal::GetNullDecimal();
    }

private:
    __extension__ typedef __int128 Wide;

    static nxDecimal D(Wide mantissa, unsigned char places)
    {
        return nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(mantissa), places);
    }

    // A number in units of 10^-19, rounded down and up.
    static std::pair<Wide, Wide> Units(const nxDecimal& number)
    {
        Wide units = number.GetValue(), rest = 0;
        for (int places = number.GetDecimalPlaces(); places < 19; ++places)
            units *= 10;
        for (int places = number.GetDecimalPlaces(); places > 19; --places, units /= 10)
            rest |= units % 10;
        return {units - (rest < 0 ? 1 : 0), units + (rest > 0 ? 1 : 0)};
    }
    Wide Bound(std::size_t band) const { return Units(_bands[band].first).first; }
    Wide Tick(std::size_t band) const { return Units(_bands[band].second).first; }

    // The band whose tick a price has, or the number of bands.
    std::size_t BandOfTick(Wide units) const
    {
        const Wide magnitude = units < 0 ? -units : units;
        std::size_t band = 0;
        while (band < _bands.size() && Bound(band) < magnitude)
            ++band;
        const bool isLower = band != 0 && band < _bands.size() && magnitude < Bound(band - 1) + Tick(band - 1);
        return isLower ? band - 1 : band;
    }
    bool IsValid(Wide units) const
    {
        const std::size_t band = BandOfTick(units);
        return band != _bands.size() && units % Tick(band) == 0;
    }

    // False beyond 10^18.
    static bool Scale(const nxDecimal& number, int places, Wide& scaled)
    {
        const int zeros = places - number.GetDecimalPlaces();
        scaled = number.GetValue();
        for (int i = 0; i < zeros && scaled != 0; ++i)
            scaled *= i < 18 ? 10 : 1;
        return zeros <= 18 || scaled == 0;
    }
    static bool Fits(Wide number) { return number == static_cast<std::int64_t>(number); }

    // Exact, modulo 2^64; but a price that does not fit at the tick's places goes through doubles.
    static nxDecimal Sum(const nxDecimal& price, nxDecimal tick, int sign)
    {
        const unsigned char places = std::max(price.GetDecimalPlaces(), tick.GetDecimalPlaces());
        Wide start = 0;
        if (!Scale(price, places, start) || !Fits(start))
            return sign > 0 ? price + tick : price - tick;
        auto step = static_cast<std::uint64_t>(tick.GetValue());
        for (int i = tick.GetDecimalPlaces(); i < places; ++i)
            step *= 10;
        const std::uint64_t sum = static_cast<std::uint64_t>(start) + (sign > 0 ? step : 0 - step);
        return nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(sum), places);
    }

    // Whether a step down by the band's tick lands on its bound or lower.
    static bool StepsOnto(const nxDecimal& price, const Bands::value_type& band)
    {
        const auto& [bound, tick] = band;
        int places = std::max(price.GetDecimalPlaces(), tick.GetDecimalPlaces());
        Wide p = 0, t = 0, b = 0;
        if (Scale(price, places, p) && Scale(tick, places, t) && Fits(p) && Fits(t) && Fits(p - t))
            return Sum(price, tick, -1) <= bound;
        places = std::max<int>(places, bound.GetDecimalPlaces());
        return Scale(price, places, p) && (!Scale(bound, places, b) || !Scale(tick, places, t) || p - b <= t);
    }

    static nxDecimal Magnitude(const nxDecimal& price)
    {
        return price.IsValid() ? nxDecimal::Abs(price) : nxDecimal(0, 0);
    }

    Bands _bands;
};

#endif
