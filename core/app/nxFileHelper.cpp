// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxFileHelper.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "core/app/internal/nxFileError.h"
#include "core/platform/nxFileCalls.h"
#include "core/platform/nxFileReplacement.h"

namespace
{
nxErrorEnum WriteAndCommit(int openError, nxFileReplacement& file, std::string_view content, bool isDurable,
                           int* systemError)
{
    if (openError != 0)
        return nxGetFileError(openError, nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE), systemError);
    int error = file.Append(content);
    if (error == 0)
        error = file.Commit(isDurable);
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}
}  // namespace

nxErrorEnum nxFileHelper::ReadFile(const std::string& path, std::size_t limit, std::string& content, int* systemError)
{
    bool hasOpened = false;
    const int error = nxFileCalls::ReadAll(path, limit, content, hasOpened);
    if (!hasOpened)
        return nxGetFileError(error, nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE), systemError);
    return nxGetFileError(error, nxErrorEnum(error == EFBIG ? NX_ERR_VALUE_OUT_OF_RANGE : NX_ERR_FILE_READ_ERR),
                          systemError);
}

nxErrorEnum nxFileHelper::ReplaceFile(const std::string& path, std::string_view content, Durability durability,
                                      int* systemError)
{
    nxFileReplacement file;
    const int error = file.Open(path);
    return WriteAndCommit(error, file, content, durability == Durability::Durable, systemError);
}

nxErrorEnum nxFileHelper::CreateFile(const std::string& path, std::string_view content, int* systemError)
{
    nxFileReplacement file;
    const int error = file.OpenNew(path);
    return WriteAndCommit(error, file, content, false, systemError);
}

nxErrorEnum nxFileHelper::CreateTemporaryFile(const std::string& directory, std::string& path, int* systemError)
{
    const int error = nxFileCalls::CreateTemporary(directory, path);
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE), systemError);
}

bool nxFileHelper::Exists(const std::string& path) { return nxFileCalls::Exists(path); }

nxErrorEnum nxFileHelper::GetSize(const std::string& path, unsigned long long& size, int* systemError)
{
    std::uint64_t bytes = 0;
    const int error = nxFileCalls::GetSize(path, bytes);
    if (error == 0)
        size = bytes;
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FILE_READ_ERR), systemError);
}

nxErrorEnum nxFileHelper::Remove(const std::string& path, int* systemError)
{
    return nxGetFileError(nxFileCalls::Remove(path), nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}

nxErrorEnum nxFileHelper::Rename(const std::string& from, const std::string& to, int* systemError)
{
    return nxGetFileError(nxFileCalls::Rename(from, to), nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}

nxErrorEnum nxFileHelper::CreateDirectories(const std::string& path, int* systemError)
{
    return nxGetFileError(nxFileCalls::CreateDirectories(path), nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}

nxErrorEnum nxFileHelper::ListDirectory(const std::string& path, std::vector<std::string>& names, int* systemError)
{
    const int error = nxFileCalls::ListDirectory(path, names);
    if (error == 0)
        std::sort(names.begin(), names.end());
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FILE_READ_ERR), systemError);
}
