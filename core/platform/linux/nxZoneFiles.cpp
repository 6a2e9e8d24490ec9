// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxZoneFiles.h"

#include <algorithm>

#include "core/platform/nxEnvironment.h"
#include "core/platform/nxFile.h"

namespace
{
nxZoneFiles::Outcome ReadZoneFile(const char* path, std::span<char> room, std::string_view& content)
{
    std::size_t size = 0;
    if (nxFile::ReadAll(path, room, size) != 0)
        return nxZoneFiles::Outcome::NoFile;
    content = {room.data(), size};
    return nxZoneFiles::Outcome::Read;
}
}  // namespace

nxZoneFiles::Outcome nxZoneFiles::ReadMachineZone(std::span<char> room, std::string_view& content)
{
    return ReadZoneFile("/etc/localtime", room, content);
}

nxZoneFiles::Outcome nxZoneFiles::Read(std::string_view name, std::span<char> room, std::string_view& content)
{
    constexpr std::string_view database = "/usr/share/zoneinfo";
    constexpr std::size_t longestPath = 1'024;

    const bool isPath = name.front() == '/';
    const bool isSecure = nxEnvironment::IsSecureExecution();
    // What the C library refuses to open for a caller with fewer rights than the program, we do not open either.
    if (isSecure && (isPath || name.find("..") != std::string_view::npos))
        return Outcome::Refused;
    char path[longestPath];
    std::string_view directory;
    if (!isPath)
        directory = !isSecure && nxEnvironment::Copy("TZDIR", path) == 0 && path[0] != '\0' ? path : database;
    if (directory.size() + name.size() + 2 > sizeof path)
        return Outcome::Refused;
    char* end = path + directory.size();
    if (directory.data() != path)
        std::copy(directory.begin(), directory.end(), path);
    *end++ = '/';
    *std::copy(name.begin(), name.end(), end) = '\0';
    return ReadZoneFile(path, room, content);
}
