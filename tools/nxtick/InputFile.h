// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_INPUTFILE_H
#define NXTICK_INPUTFILE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace nxtick
{
/// A file, or standard input, read in blocks.
class InputFile
{
public:
    /// @param path "-" for standard input. @throws Failure when it cannot be opened.
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// What messages call it: its path, safe to show, or "stdin".
    const std::string& GetName() const { return _name; }

    /// Reads at most @p size bytes. @return how many came, 0 at the end. @throws Failure.
    std::size_t Read(char* buffer, std::size_t size);

    bool IsRegular() const { return _isRegular; }

    /// Whether nothing can be read at present, so that Read() waits. Never true of a regular file.
    bool WouldWait() const;

    /// Waits until something can be read here or from another descriptor. @return whether it is not the other one.
    bool Await(int other) const;

    /// Whether it is a regular file, and the descriptor is open on the same one.
    bool IsSameFile(int descriptor) const;

    /// How much of the file has been read, from 0 to 1; negative where its size is not known.
    double GetShareRead() const;

private:
    [[noreturn]] void _Fail() const;

    std::string _name;
    int _file;
    bool _isRegular = false;
    std::uint64_t _size = 0;
    std::uint64_t _read = 0;
};
}  // namespace nxtick

#endif
