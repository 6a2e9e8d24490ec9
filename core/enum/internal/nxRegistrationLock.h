// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXREGISTRATIONLOCK_H
#define CORE_ENUM_INTERNAL_NXREGISTRATIONLOCK_H

#include <mutex>

/// Held while texts of enumerations and masks are registered, and while the maps of all texts are filled. Look-ups take no
/// lock.
///
/// A thread that holds it takes no other lock of the library. A fork takes it, so that a child finds the maps whole.
class nxRegistrationLock
{
public:
    nxRegistrationLock() : _lock(_mutex) {}

private:
    static constinit std::mutex _mutex;
    static const bool _isKeptAcrossForks;

    std::lock_guard<std::mutex> _lock;
};

#endif
