// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxFunctorRun.h"

#include <exception>

#include "core/thread/internal/nxFunctorCells.h"
#include "core/thread/internal/nxThreadReport.h"

constinit thread_local const nxFunctorRun* nxFunctorRun::_innermost = nullptr;

namespace
{
bool CallWithReport(void (*action)(void*), void* place, bool isDestructor)
{
    try
    {
        action(place);
        return true;
    }
    catch (const std::exception& exception)
    {
        nxThreadReport::ExceptionLeftFunctor(isDestructor, exception.what());
    }
    catch (...)
    {
        // No exception: the thread is being cancelled or has called pthread_exit, and the unwinding must go on.
        if (std::current_exception() == nullptr)
            throw;
        nxThreadReport::ExceptionLeftFunctor(isDestructor, "of unknown type");
    }
    return false;
}
}  // namespace

bool nxFunctorRun::IsInside(const void* queue) noexcept
{
    for (const nxFunctorRun* run = _innermost; run != nullptr; run = run->_outer)
        if (run->_queue == queue)
            return true;
    return false;
}

bool nxFunctorRun::RunAndDestroy(nxFunctorCell& cell)
{
    bool hasEnded = false;
    try
    {
        hasEnded = CallWithReport(cell.actions->run, cell.place, false);
    }
    catch (...)
    {
        Destroy(cell);
        throw;
    }
    return Destroy(cell) && hasEnded;
}

bool nxFunctorRun::Destroy(nxFunctorCell& cell)
{
    return cell.actions->destroy == nullptr || CallWithReport(cell.actions->destroy, cell.place, true);
}
