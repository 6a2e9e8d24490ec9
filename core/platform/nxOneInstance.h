#ifndef CORE_PLATFORM_NXONEINSTANCE_H
#define CORE_PLATFORM_NXONEINSTANCE_H

#include <atomic>

/// The one object of a class: made on first use, never destroyed. Not a function-local static, because a child that is
/// forked while another thread makes that one waits for its guard for ever.
///
/// Threads: any. Two that come first at the same time make an object each, of which one is kept.
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
    std::atomic<Object*> _object{nullptr};
};

#endif
