// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXONEINSTANCE_H
#define CORE_PLATFORM_NXONEINSTANCE_H

#include <atomic>

/// The single object of a class, made on first use and never destroyed. A function-local static would not serve: a child
/// that is forked while another thread makes the object waits for the guard for ever.
///
/// Threads: any. Two threads that ask first at the same moment each make an object, and one of the two is kept.
template <class Object>
class nxOneInstance
{
public:
    Object& Get()
    {
        Object* object = _object.load(std::memory_order_acquire);
        if (object != nullptr)
            return *object;
        auto* const fresh = new Object;
        if (_object.compare_exchange_strong(object, fresh, std::memory_order_acq_rel))
            return *fresh;
        delete fresh;
        return *object;
    }

private:
    // Get() publishes the object that it made, or takes the one of another thread (acquire and release in one exchange), and
    // later calls load it (acquire).
    std::atomic<Object*> _object{nullptr};
};

#endif
