// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXVERSIONNUMBER_H
#define CORE_TEXT_NXVERSIONNUMBER_H

#include <string>

#include "core/nxExport.h"

/// The version of the library that the process has loaded, and whether another version is compatible with it.
///
/// A version is written major.minor.sub, three decimal numbers. Two versions are compatible when their major and their
/// minor numbers are equal.
///
/// - Errors: none; a field that is not a number counts as 0.
/// - Threads: any thread. Ownership: the one instance lives as long as the process.
/// @code
/// // The version that the program was compiled with, against the one that it runs with:
/// if (!nxVersionNumber::GetInstance().IsCompatibleVersionNumber(NX_CORE_VERSION))
///     return 1;
/// @endcode
class NX_CORE_API nxVersionNumber
{
public:
    /// The one instance; it lives as long as the process.
    static nxVersionNumber& GetInstance();

    /// @return the library's own version, such as "1.0.0".
    std::string GetVersionNumber() const;

    /// Reads the first three fields of @p version, separated by ".". A field is read as C's `atoi` does: white space,
    /// a sign, then the leading digits; a missing field, or one of another form, gives 0. Numbers beyond the
    /// range of an `int` count as its largest or smallest, and a negative number wraps: "-1" gives 4294967295.
    void GetMajorMinorSubVersionParts(const std::string& version, unsigned int& major, unsigned int& minor,
                                      unsigned int& sub) const;

    /// @return whether @p other has the library's own major and minor number; the sub number does not count.
    bool IsCompatibleVersionNumber(const std::string& other) const;

private:
    nxVersionNumber() = default;
    nxVersionNumber(const nxVersionNumber&) = delete;
    nxVersionNumber& operator=(const nxVersionNumber&) = delete;
};

#endif
