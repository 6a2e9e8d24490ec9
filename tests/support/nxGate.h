#ifndef TESTS_SUPPORT_NXGATE_H
#define TESTS_SUPPORT_NXGATE_H

#include <atomic>

/// A door that a device can be kept behind.
class nxGate
{
public:
    void Pass()
    {
        _waiting = true;
        _waiting.notify_all();
        _open.wait(false);
    }
    void WaitForSomebody() { _waiting.wait(false); }
    void Open()
    {
        _open = true;
        _open.notify_all();
    }

private:
    std::atomic<bool> _waiting{false};
    std::atomic<bool> _open{false};
};

#endif
