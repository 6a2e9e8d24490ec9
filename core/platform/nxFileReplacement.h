// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILEREPLACEMENT_H
#define CORE_PLATFORM_NXFILEREPLACEMENT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/platform/nxDescriptor.h"
#include "core/platform/nxUnnamedFile.h"

/// The new content of a file, which takes the file's name in one step when it is complete. See nxAtomicFile for the rules.
///
/// - Errors: operations return the system's error number, 0 when they succeed. An object whose operation has failed only
///   can be destroyed.
/// - Threads: like an int.
class nxFileReplacement
{
public:
    nxFileReplacement();

    /// Begins the new content of the file at @p path, which a link may lead to.
    [[nodiscard]] int Open(const std::string& path);
    /// Begins a file that must not exist when it is complete.
    [[nodiscard]] int OpenNew(const std::string& path);

    [[nodiscard]] int Append(std::string_view content);

    /// Writes the rest and gives the file its name. @param isDurable whether both are on the disk when it returns.
    [[nodiscard]] int Commit(bool isDurable);

private:
    int _Enter(const std::string& path);
    int _FollowLink();
    int _FindOld(struct stat& status);
    int _CreateFile(const struct stat& status);
    int _WriteOut(std::string_view content);
    int _CheckDescriptors() const;
    int _TakeName();

    static constexpr std::size_t _bufferSize = std::size_t{64} << 10;

    std::string _directoryPath;  // ends in '/', or is empty for the working directory
    nxDescriptor _directory;
    std::string _name;
    bool _isSearchOnly = false;  // the directory may not be read, and cannot be synchronised
    bool _mustBeNew = false;     // nothing may have the name
    bool _isThere = false;       // a file had the name
    std::string _buffer;
    nxUnnamedFile _file;  // goes before its directory
};

#endif
