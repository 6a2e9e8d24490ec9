#ifndef CORE_ENUM_NXREFUSEDTEXTS_H
#define CORE_ENUM_NXREFUSEDTEXTS_H

#include <string>
#include <string_view>
#include <vector>

#include "core/nxExport.h"

/// The rows that enumerations and masks could not register, for the program to look at.
///
/// Registration is silent: it happens while the library or a plug-in is loaded, where nobody listens. Two plug-ins that
/// chose the same identifier, or the same value, are told apart here. nxLogSetUp() reports at the error level what was
/// refused until then; a program that loads plug-ins later asks again. A row that is registered a second time with the
/// same identifier is no refusal.
///
/// - Threads: Get() may be called by any thread at any time; rows are added by the one that registers.
/// @code
/// for (const std::string& sentence : nxRefusedTexts::Get())
///     std::cerr << sentence << '\n';  // "3000007 'SESSION_DAY' is not registered: 3000001 has that identifier"
/// @endcode
class NX_CORE_API nxRefusedTexts
{
public:
    /// @return a sentence for each row, in the order in which they were refused.
    static std::vector<std::string> Get();

    /// Adds a row of an enumeration that was refused; nothing where the value has that identifier already.
    static void AddValue(unsigned value, std::string_view shortDescription) noexcept;
    /// Adds a row of an enumeration whose value lies outside its class's interval.
    static void AddOutside(unsigned value, std::string_view shortDescription) noexcept;
    /// Adds a flag of the mask @p className that was refused because it has the text @p kept; nothing where they agree.
    static void AddFlag(std::string_view className, unsigned long long word, std::string_view shortDescription,
                        std::string_view kept) noexcept;
};

#endif
