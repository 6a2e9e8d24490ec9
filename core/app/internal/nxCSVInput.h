// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INTERNAL_NXCSVINPUT_H
#define CORE_APP_INTERNAL_NXCSVINPUT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

#include "core/enum/nxErrorEnum.h"
#include "core/platform/nxByteSource.h"

/// The bytes of an nxCSVFileReader: a file, or a text in memory.
class nxCSVInput
{
public:
    nxCSVInput() = default;
    explicit nxCSVInput(std::string_view text) : _text(text) {}

    /// @return whether the file could be opened.
    bool Open(const std::string& path)
    {
        _error = _file.Open(path);
        return _error == 0;
    }

    /// What the system says of the operation that failed; empty if none has.
    std::string GetReason() const { return _error == 0 ? "" : ": " + std::generic_category().message(_error); }

    /// See nxCSVParser::Source. @param self the input.
    static nxErrorEnum Read(void* self, char* buffer, std::size_t size, std::size_t& read)
    {
        auto& input = *static_cast<nxCSVInput*>(self);
        if (!input._file.IsOpen())
        {
            read = input._text.copy(buffer, size);
            input._text.remove_prefix(read);
            return nxErrorEnum();
        }
        input._error = input._file.Read(buffer, size, read);
        return nxErrorEnum(input._error == 0 ? NX_ENUM_UNDEFINED : NX_ERR_FILE_READ_ERR);
    }

private:
    nxByteStream _file;
    std::string_view _text;  // what is left of it
    int _error = 0;
};

#endif
