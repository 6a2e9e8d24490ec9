#ifndef CORE_PRICE_INTERNAL_NXTICKRUN_H
#define CORE_PRICE_INTERNAL_NXTICKRUN_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickRules.h"
#include "core/price/inline/nxTickZone.h"

/// Cuts short a long run of steps that go by the decimal rules: it learns stretches of prices from which every step adds
/// the same integer, and takes all the steps within one at once.
///
/// Which band's tick a step goes by depends on the price's magnitude alone and never falls as that grows, so a stretch
/// is found by bisection. Sums that wrap are integers like the others.
/// - Threads and ownership: a local variable of one run, without memory of its own; the table outlives it.
class nxTickRun
{
public:
    /// @param isUp the direction of all steps.
    nxTickRun(const nxTickRules& rules, bool isUp) : _rules(rules), _isUp(isUp) {}

    /// Moves the price by as many of the @p wanted steps as the stretch around it tells.
    /// @return how many; 0 when the price lies in no stretch that is known.
    std::uint64_t Leap(nxDecimal& price, std::uint64_t wanted)
    {
        return _learnt == 0 ? 0 : _LeapAsLearnt(price, wanted);
    }

    /// To be called before each single step by the decimal rules; learns now and then, because a stretch costs as much
    /// as some hundred steps.
    void Watch(const nxDecimal& price)
    {
        if (++_watched % _stepsToLearn == 0)
            _Learn(price);
    }

private:
    typedef nxTickRules::Band Band;

    struct _Stretch
    {
        std::uint64_t scale;
        std::uint64_t first;  // a range, without initial values: most runs learn nothing
        std::uint64_t span;
        std::uint64_t step;     // at the places of the prices, modulo 2^64
        bool mayDropZeros;      // a price that ends in 0 may lose places
        bool changesLastDigit;  // as a step that has wrapped does
        bool staysInItsBand;    // only prices whose step does

        nxTickZone::Range GetPrices() const { return {first, span}; }
    };

    static constexpr unsigned _stepsToLearn = 32;

    bool _IsOutwards(bool isNegative) const { return _isUp != isNegative; }
    std::uint64_t _LeapAsLearnt(nxDecimal& price, std::uint64_t wanted);
    const _Stretch* _Find(std::uint64_t scale, std::int64_t value);
    std::uint64_t _CountSteps(const _Stretch& stretch, std::int64_t value) const;
    Band _BandOfStep(const nxDecimal& price) const;
    bool _GoesBy(Band band, const _Stretch& stretch, const nxDecimal& price) const;
    void _Learn(const nxDecimal& price);

    const nxTickRules& _rules;
    bool _isUp;
    unsigned _watched = 0;
    std::size_t _learnt = 0;
    std::size_t _last = 0;
    std::array<_Stretch, 64> _stretches;
};

#endif
