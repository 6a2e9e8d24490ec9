#ifndef TESTS_SUPPORT_NXGATE_H
#define TESTS_SUPPORT_NXGATE_H

#include <gtest/gtest.h>

#include <atomic>

#include "tests/support/nxTestThreads.h"

/// A door that a device can be kept behind, half a minute at most.
class nxGate
{
public:
    void Pass()
    {
        _waiting = true;
        EXPECT_TRUE(nxEventually([this] { return _open.load(); }));
    }
    void WaitForSomebody() const
    {
        EXPECT_TRUE(nxEventually([this] { return _waiting.load(); }));
    }
    void Open() { _open = true; }

private:
    std::atomic<bool> _waiting{false};
    std::atomic<bool> _open{false};
};

#endif
