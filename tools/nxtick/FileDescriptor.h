// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_FILEDESCRIPTOR_H
#define NXTICK_FILEDESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace nxtick
{
/// Owns a descriptor of the system, or none.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    /// @param number negative for none.
    explicit FileDescriptor(int number) : _number(number) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(_number, other._number);
        return *this;
    }

    bool IsOpen() const { return _number >= 0; }
    int Get() const { return _number; }

    /// @return false when the system reports a failure, for example data that it could not write after all.
    bool Close() { return _number < 0 || ::close(std::exchange(_number, -1)) == 0; }

private:
    int _number = -1;
};
}  // namespace nxtick

#endif
