// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXSCRATCHDIRECTORY_H
#define TESTS_SUPPORT_NXSCRATCHDIRECTORY_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

/// An empty directory that only one test uses, gone with all that is in it when the test ends.
class nxScratchDirectory
{
public:
    nxScratchDirectory()
    {
        std::string name = (std::filesystem::temp_directory_path() / "nxtestXXXXXX").string();
        _path = mkdtemp(name.data());
    }
    ~nxScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    nxScratchDirectory(const nxScratchDirectory&) = delete;
    nxScratchDirectory& operator=(const nxScratchDirectory&) = delete;

    const std::filesystem::path& GetPath() const { return _path; }

private:
    std::filesystem::path _path;
};

/// All bytes of a file, none when it cannot be read.
inline std::string nxReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A file with these bytes, instead of what was there.
inline void nxWriteFile(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

#endif
