// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxAtomicFile.h"

#include <cerrno>
#include <utility>

#include "core/app/internal/nxFileError.h"
#include "core/platform/nxFileReplacement.h"

nxAtomicFile::nxAtomicFile() noexcept = default;
nxAtomicFile::nxAtomicFile(nxAtomicFile&& other) noexcept = default;
nxAtomicFile& nxAtomicFile::operator=(nxAtomicFile&& other) noexcept = default;
nxAtomicFile::~nxAtomicFile() = default;

nxErrorEnum nxAtomicFile::Open(const std::string& path, int* systemError)
{
    auto opened = std::make_unique<nxFileReplacement>();
    const int error = opened->Open(path);
    if (error == 0)
        _replacement = std::move(opened);
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE), systemError);
}

nxErrorEnum nxAtomicFile::Append(std::string_view content, int* systemError)
{
    if (_replacement == nullptr)
        return nxGetFileError(EBADF, nxErrorEnum(NX_ERR_NOT_INITIALISED), systemError);
    const int error = _replacement->Append(content);
    if (error != 0)
        _replacement.reset();
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}

nxErrorEnum nxAtomicFile::Commit(nxFileHelper::Durability durability, int* systemError)
{
    if (_replacement == nullptr)
        return nxGetFileError(EBADF, nxErrorEnum(NX_ERR_NOT_INITIALISED), systemError);
    const std::unique_ptr<nxFileReplacement> replacement = std::move(_replacement);
    const int error = replacement->Commit(durability == nxFileHelper::Durability::Durable);
    return nxGetFileError(error, nxErrorEnum(NX_ERR_FILE_WRITE_ERR), systemError);
}
