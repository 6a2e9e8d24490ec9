// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXREFUSEDTEXTS_H
#define CORE_ENUM_NXREFUSEDTEXTS_H

#include <string>
#include <string_view>
#include <vector>

#include "core/nxExport.h"

/// The rows that enumerations and masks could not register, and the enumerations whose intervals overlap.
///
/// Registration is silent, because it happens while the library or a plug-in is loaded, when errors cannot be reported.
/// Two plug-ins that chose the same identifier or the same value are found here. nxLogSetUp() logs the sentences at the
/// error level; a program that loads plug-ins afterwards calls Get() again, and a unit test expects it to be empty. A row
/// that is registered a second time with the same identifier does not count as refused, and a class that two plug-ins
/// define with the same name and interval does not overlap with itself.
///
/// Classes whose rows are registered one by one with _Register() are not compared.
///
/// - Threads: Get() may be called by any thread at any time; rows are added by the one that registers.
/// @code
/// for (const std::string& sentence : nxRefusedTexts::Get())
///     std::cerr << sentence << '\n';
/// // 3000107 'SESSION_DAY' of plugInEnum is not registered: 3000001 of mySessionEnum has that identifier
/// // plugInEnum (3000100 to 3000200) and mySessionEnum (3000000 to 3000150) have values in common
/// @endcode
class NX_CORE_API nxRefusedTexts
{
public:
    /// @return a sentence for each row and for each pair of classes, in the order in which they were found.
    static std::vector<std::string> Get();

    /// Adds a sentence for each class whose interval overlaps with that of @p className, an enumeration that registers its
    /// values. The bounds are exclusive. nxGenericEnum, which shares its values with others, is not compared.
    static void AddClass(std::string_view className, unsigned minimum, unsigned maximum) noexcept;
    /// Adds a row of an enumeration that was refused, but not when the value already has that identifier.
    static void AddValue(unsigned value, std::string_view shortDescription) noexcept;
    /// Adds a row of an enumeration whose value lies outside its class's interval.
    static void AddOutside(unsigned value, std::string_view shortDescription) noexcept;
    /// Adds a flag of the mask @p className that was refused because it has the text @p kept, but not when
    /// the two texts are equal.
    static void AddFlag(std::string_view className, unsigned long long word, std::string_view shortDescription,
                        std::string_view kept) noexcept;
};

#endif
