// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXLISTEDBITMASKSOURCE_H
#define CORE_ENUM_INTERNAL_NXLISTEDBITMASKSOURCE_H

#include "core/enum/inline/nxListedBitMask.h"
#include "core/enum/internal/nxBitMaskRegistry.h"

/// The source of a mask of the library. Unlike NX_BIT_MASK_SOURCE it copies no text, because the library stays loaded.
#define NX_LIBRARY_BIT_MASK_SOURCE(CLASS)                                            \
    const bool CLASS::_registered = _RegisterValues();                               \
    bool CLASS::_RegisterValues()                                                    \
    {                                                                                \
        using Registry = nxBitMaskRegistry<Word>;                                    \
        static constexpr Registry::Flag flags[] = {NX_FLAGS_##CLASS(NX_FLAG_TEXTS)}; \
        static constinit Registry::ListedClass listed{#CLASS, flags};                \
        return Registry::GetInstance().AddListed(listed);                            \
    }                                                                                \
    std::string CLASS::GetClassName() const { return #CLASS; }

#endif
