// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXTICKRUN_H
#define CORE_PRICE_INTERNAL_NXTICKRUN_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickRules.h"
#include "core/price/inline/nxTickZone.h"

/// Cuts short a long run of steps that go by the decimal rules. It learns stretches of prices from which every step adds
/// the same integer, and takes all steps within one at once.
///
/// Why a stretch needs no look at the prices inside it:
/// 1. The band whose tick a step takes depends on the magnitude of the price alone, and never falls as that grows. The
///    prices of one band are therefore an interval, and bisection finds its ends.
/// 2. A step from a price that has at least the places of the tick adds one integer to the mantissa, modulo 2^64. A sum
///    that wraps is an integer like the others.
/// 3. A price that has exactly the tick's places keeps them, unless the step leads into a band with other places. Where
///    the next band has others, the stretch holds only prices whose step stays in their band.
/// 4. A price with more places than the tick keeps them while its last digit is not 0. A tick scaled up is a multiple of
///    10 and leaves the last digit as it is, as long as neither the scaled tick nor the sum wraps. Where the next band
///    has more places than the price, nothing is learnt.
/// - Threads and ownership: a local variable of one run, without memory of its own; the rules outlive it.
class nxTickRun
{
public:
    /// What becomes of a step whose sum does not fit 64 bits.
    enum class Overflow
    {
        Wraps,   ///< It is taken modulo 2^64.
        IsLeft,  ///< No leap takes it. Prices have at most nxDecimal::MaxExactPlaces places.
    };

    /// @param isUp the direction of all steps.
    nxTickRun(const nxTickRules& rules, bool isUp, Overflow overflow = Overflow::Wraps)
        : _rules(rules), _isUp(isUp), _overflow(overflow)
    {
    }

    /// Moves the price by as many of the @p wanted steps as the stretches that were learnt allow.
    /// @return the number of steps; 0 when the price lies in none of them.
    std::uint64_t Leap(nxDecimal& price, std::uint64_t wanted)
    {
        return _learnt == 0 ? 0 : _LeapAsLearnt(price, wanted);
    }

    /// To be called before each single step by the decimal rules. Learns now and then.
    void Watch(const nxDecimal& price)
    {
        if (++_watched % _stepsForEachStretch == 0)
            _Learn(price);
    }

private:
    typedef nxTickRules::Band Band;

    struct _Stretch
    {
        std::uint64_t scale;
        std::uint64_t first;  // a range, without initial values, because most runs learn nothing
        std::uint64_t span;
        std::uint64_t step;     // at the places of the prices, modulo 2^64
        bool mayDropZeros;      // claim 4: the price has more places than the tick
        bool changesLastDigit;  // claim 4: the scaled tick wraps
        bool staysInItsBand;    // claim 3: only prices whose step does

        nxTickZone::Range GetPrices() const { return {first, span}; }
    };

    static constexpr unsigned _stepsForEachStretch = 32;  // a stretch costs as much as some hundred steps
    static constexpr std::size_t _mostStretches = 64;     // then the oldest makes room

    bool _IsOutwards(bool isNegative) const { return _isUp != isNegative; }
    std::uint64_t _LeapAsLearnt(nxDecimal& price, std::uint64_t wanted);
    const _Stretch* _Find(std::uint64_t scale, std::int64_t value);
    std::uint64_t _CountSteps(const _Stretch& stretch, std::int64_t value) const;
    Band _BandOfStep(const nxDecimal& price) const;
    bool _GoesBy(Band band, const _Stretch& stretch, const nxDecimal& price) const;
    void _Learn(const nxDecimal& price);
    bool _CutToFittingSteps(_Stretch& stretch) const;

    const nxTickRules& _rules;
    bool _isUp;
    Overflow _overflow;
    unsigned _watched = 0;
    std::size_t _learnt = 0;
    std::size_t _last = 0;
    std::array<_Stretch, _mostStretches> _stretches;
};

#endif
