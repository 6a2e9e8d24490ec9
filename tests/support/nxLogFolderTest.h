// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXLOGFOLDERTEST_H
#define TESTS_SUPPORT_NXLOGFOLDERTEST_H

#include "core/app/nxApplicationData.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogRetention.h"
#include "tests/support/nxSystemTest.h"

inline nxFileLogDevice& Device() { return nxFileLogDevice::GetInstance(); }

/// A test of the file device with a log directory of its own, in which the application is called "orders".
class nxLogFolderTest : public testing::Test
{
protected:
    using Path = std::filesystem::path;

    nxLogFolderTest()
    {
        setenv("QRX_LOG_DIRECTORY", GetDirectory().c_str(), 1);
        nxApplicationData::SetApplicationName("orders");
    }
    ~nxLogFolderTest() override
    {
        Device().Destroy();
        Device().SetRetention({});
        nxApplicationData::SetApplicationName("");
        unsetenv("QRX_LOG_DIRECTORY");
    }

    const Path& GetRoot() const { return _scratch.GetPath(); }
    Path GetDirectory() const { return GetRoot() / "log"; }
    /// What the library has told on the error stream.
    std::string GetErrors() const { return nxReadFile(GetRoot() / "errors"); }

    /// Opens the first file, with the log's thread at work.
    static void Create(const nxLogRetention& retention, unsigned long long limit = 0)
    {
        Device().SetRetention(retention);
        ASSERT_TRUE(Device().Create(nxValueWrapper<unsigned long long>(limit)));
        NX_LOG(NX_LOG_LEVEL_INFO) << "starts the log's thread";
    }

    static void SetAge(const Path& path, double days)
    {
        const auto age = std::chrono::seconds(static_cast<long long>(days * 86'400));
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
    }
    Path Make(const std::string& name, std::size_t size = 1, double ageInDays = 0) const
    {
        const Path path = GetDirectory() / name;
        std::filesystem::create_directories(path.parent_path());
        nxWriteFile(path, std::string(size, 'x'));
        SetAge(path, ageInDays);
        return path;
    }
    /// A program of the name gzip.
    std::string MakeCompressor(const std::string& script) const
    {
        nxWriteFile(GetRoot() / "gzip", "#!/bin/sh\n" + script);
        std::filesystem::permissions(GetRoot() / "gzip", std::filesystem::perms::owner_all);
        return GetRoot() / "gzip";
    }

    template <class Wanted>
    std::vector<Path> FindFiles(const Wanted& wanted) const
    {
        std::vector<Path> files;
        std::error_code gone;  // others remove files meanwhile
        for (std::filesystem::recursive_directory_iterator entry(GetDirectory(), gone), end; entry != end;
             entry.increment(gone))
            if (entry->is_regular_file(gone) && wanted(entry->path()))
                files.push_back(entry->path());
        return files;
    }
    std::size_t CountFiles() const
    {
        return FindFiles([](const Path&) { return true; }).size();
    }

private:
    const nxScratchDirectory _scratch;
    const nxRedirected _errors{STDERR_FILENO,
                               open((GetRoot() / "errors").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600)};
};

#endif
