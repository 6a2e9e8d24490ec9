// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGTAG_H
#define CORE_LOG_INLINE_NXLOGTAG_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "core/numeric/nxDecimal.h"

/// How values are held in a record: a tag, then the value's bytes as they are in memory.
///
/// Invariant: nxLogSizeOf() and the length of a text, group or name decide alone how many bytes follow a tag.
enum class nxLogTag : std::uint8_t
{
    Cut,                ///< The message was longer than allowed, or memory ran out. Nothing follows.
    End,                ///< nxLogTerminator. What follows does not count.
    Text,               ///< A 32-bit length and the bytes.
    True,               ///< Nothing more.
    False,              ///< Nothing more.
    Signed32,           ///< The number.
    Unsigned32,         ///< The number.
    Signed64,           ///< The number.
    Unsigned64,         ///< The number.
    Double,             ///< The number.
    Address,            ///< The pointer.
    Decimal,            ///< An nxDecimal.
    KeptText,           ///< A pointer to a std::string that lives as long as the process.
    DestinationUser,    ///< An unsigned int; not part of the message.
    SourceApplication,  ///< A 32-bit length and the bytes; not part of the message.
    Null,               ///< A field's value that is null. Nothing more.
    NoChange,           ///< A field's value that is no change. Nothing more.
    Group,              ///< A 32-bit length and tagged values with this many bytes: the one value of a field.
    Field,              ///< An 8-bit length and a field's name. The field's value is the next one.
    UnshownField,       ///< The same for a field that lines of text leave out.
};

/// @return the bytes of the value that follow @p tag; of what has a length those of the length alone. For a number that is no tag
///         the largest size.
constexpr std::size_t nxLogSizeOf(nxLogTag tag) noexcept
{
    switch (tag)
    {
        case nxLogTag::Cut:
        case nxLogTag::End:
        case nxLogTag::True:
        case nxLogTag::False:
        case nxLogTag::Null:
        case nxLogTag::NoChange:
            return 0;
        case nxLogTag::Field:
        case nxLogTag::UnshownField:
            return sizeof(std::uint8_t);
        case nxLogTag::Text:
        case nxLogTag::SourceApplication:
        case nxLogTag::Group:
        case nxLogTag::Signed32:
        case nxLogTag::Unsigned32:
        case nxLogTag::DestinationUser:
            return sizeof(std::uint32_t);
        case nxLogTag::Signed64:
        case nxLogTag::Unsigned64:
            return sizeof(std::uint64_t);
        case nxLogTag::Double:
            return sizeof(double);
        case nxLogTag::Address:
        case nxLogTag::KeptText:
            return sizeof(const void*);
        case nxLogTag::Decimal:
            return sizeof(nxDecimal);
    }
    return std::numeric_limits<std::size_t>::max();
}

#endif
