// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXNEARESTROUNDING_H
#define CORE_NUMERIC_INTERNAL_NXNEARESTROUNDING_H

#include <cfenv>

#include "core/platform/inline/nxDoubleHelper.h"

/// Rounds to the nearest while it lives, whatever direction the thread is set to. Operands and results pass through
/// nxDoubleHelper::Rounded(), across which no operation moves.
class nxNearestRounding
{
public:
    nxNearestRounding()
    {
        if (nxDoubleHelper::RoundsToNearest()) [[likely]]
            return;
        _direction = std::fegetround();
        std::fesetround(FE_TONEAREST);
    }
    ~nxNearestRounding()
    {
        if (_direction != FE_TONEAREST) [[unlikely]]
            std::fesetround(_direction);
    }
    nxNearestRounding(const nxNearestRounding&) = delete;
    nxNearestRounding& operator=(const nxNearestRounding&) = delete;

private:
    int _direction = FE_TONEAREST;
};

#endif
