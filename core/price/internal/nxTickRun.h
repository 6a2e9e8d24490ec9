#ifndef CORE_PRICE_INTERNAL_NXTICKRUN_H
#define CORE_PRICE_INTERNAL_NXTICKRUN_H

#include <cstdint>

#include "core/numeric/nxDecimal.h"
#include "core/price/nxVariableTickTable.h"

/// Cuts short a long run of single steps that go by the decimal rules: it watches the prices until the steps repeat
/// themselves, and then takes all those at once that provably go on so, to the last place.
///
/// The rules know a price by its band, its number of places and its double. While those keep to one band and to one
/// power of two, moving a price by a suitable distance moves the price after the step by the same distance: any
/// distance where the sums are exact integers, else one that both the decimals and the doubles take without rounding.
/// So once the run comes to a price that lies such a distance from an earlier one, the steps between the two repeat.
/// - Threads and ownership: a local variable of one run; the table outlives it.
class nxTickRun
{
public:
    /// @param isUp the direction of all steps.
    nxTickRun(const nxVariableTickTable& table, bool isUp) : _table(table), _isUp(isUp) {}

    /// To be called after each single step, with the price that it led to.
    /// @param price is moved by further steps where they are known.
    /// @param limit the most steps that are wanted.
    /// @return how many steps the price was moved.
    std::uint64_t Leap(nxDecimal& price, std::uint64_t limit);

    /// To be called when steps were made elsewhere.
    void Restart() { _isRunning = false; }

private:
    typedef nxVariableTickTable::iterator iterator;

    // What a step depends on, beside the price's remainder.
    struct _Rule
    {
        iterator band;  // whose increment is used
        std::uint64_t scale = 0;
        int bits = 0;      // of the magnitude
        int exponent = 0;  // of its double
        bool isNegative = false;

        bool operator==(const _Rule&) const = default;
    };

    bool _IsOutwards() const { return _isUp != _rule.isNegative; }
    bool _FindRule(const nxDecimal& price, _Rule& rule) const;
    bool _SumsAreExact() const;
    std::uint64_t _Unit() const;
    bool _HoldsAt(const nxDecimal& price, std::int64_t distance, std::uint64_t times) const;
    bool _ComparesAlike(std::uint64_t from, std::uint64_t to) const;

    const nxVariableTickTable& _table;
    bool _isUp;
    bool _isRunning = false;
    _Rule _rule;
    std::uint64_t _unit = 0;      // prices a multiple of it apart are stepped alike; 0: never
    std::int64_t _anchor = 0;     // an earlier price of the run
    std::uint64_t _length = 0;    // steps made since then
    std::uint64_t _patience = 1;  // steps after which a later price becomes the anchor
};

#endif
