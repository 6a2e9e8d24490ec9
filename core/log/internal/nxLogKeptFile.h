// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGKEPTFILE_H
#define CORE_LOG_INTERNAL_NXLOGKEPTFILE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

/// The forms of a log file. Each compressed form has the plain one's name and an ending more.
enum class nxLogFileForm : std::uint8_t
{
    Plain,
    Gzip,
    Zstd,
    Xz
};

/// A log file of this application in one of the directories of dates, small enough to be remembered by the thousand.
///
/// Invariant: the names are exactly those that nxLogFileNames makes; no other name is read as one.
///
/// Threads: like an int.
struct nxLogKeptFile
{
    static constexpr nxLogFileForm CompressedForms[] = {nxLogFileForm::Gzip, nxLogFileForm::Zstd, nxLogFileForm::Xz};

    std::int32_t day = 0;        ///< The date of its directory, in days since 1970.
    std::uint32_t start = 0;     ///< Of its process, 90703.
    std::uint32_t process = 0;   ///< Its process's number.
    std::uint32_t sequence = 0;  ///< From 1 on.
    std::int64_t modified = 0;   ///< When it was last written to, in nanoseconds since 1970, UTC.
    std::uint64_t size = 0;      ///< Bytes.
    nxLogFileForm form = nxLogFileForm::Plain;

    /// Reads the name of a directory such as "05Mar2024". @return false, with @p day as it was, for every other text.
    static bool ReadDay(std::string_view folder, std::int32_t& day);
    /// The name of the directory in which it is.
    std::string GetFolder() const;

    /// Reads start, process, sequence and form. @return false for every name that is not of @p application.
    bool ReadName(std::string_view application, std::string_view name);
    /// The name in the directory of the date.
    std::string GetName(std::string_view application) const;
    /// The name that it has, or will have, in another form.
    std::string GetNameAs(std::string_view application, nxLogFileForm other) const;

    /// Whether it was written to before the other; for equal times, whether it was begun before.
    friend bool operator<(const nxLogKeptFile& left, const nxLogKeptFile& right)
    {
        return left._GetAge() < right._GetAge();
    }

private:
    std::tuple<std::int64_t, std::int32_t, std::uint32_t, std::uint32_t, std::uint32_t> _GetAge() const
    {
        return {modified, day, start, process, sequence};
    }
};

#endif
