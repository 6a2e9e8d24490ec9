// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_OUTPUTFILE_H
#define NXTICK_OUTPUTFILE_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "FileDescriptor.h"
#include "OutputTarget.h"
#include "TemporaryFile.h"

namespace nxtick
{
/// A file that appears under its name only when it is complete, or a stream.
///
/// - Streams are written to directly, as the text comes: standard output, an open descriptor by a name such as
///   /dev/stdout, and everything that is not a regular file, such as /dev/null or a pipe. The previous content of a
///   file that a descriptor leads to stays.
/// - A file is written to a TemporaryFile in its directory, and stored on the disk, before it gets the name. Until
///   then, and when the object is destroyed or the program ends before that, the file that had the name is as it was.
/// - The state of the directory when the object was made decides. A new file does not take a name that another program
///   has used since, and replaces only the file that was there then: otherwise the run fails.
/// - A file that replaces another has its owner, group, permissions and access list; other extended attributes and
///   further hard links stay with the old file. Links to it stay links.
/// - The file is written in place at the end of the run, with a message on standard error, if no file can be made in
///   its directory, if it is a mount of its own, or if its owner or access list cannot be kept. If necessary the text
///   waits in the directory for temporary files (TMPDIR, or /tmp). Signals that end the program wait until the file is
///   written. SIGKILL and a crash of the machine do not wait and may leave a mixture of both contents.
/// - Every failure of the system throws.
///
/// One object with a name exists at a time.
class OutputFile
{
public:
    /// @param path "-" for standard output. @throws Failure when it cannot be written.
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// What messages call it: its path, safe to show, or "stdout".
    const std::string& GetName() const { return _name; }

    /// The descriptor of a stream, -1 for a file.
    int GetStream() const { return _temporary.IsOpen() ? -1 : _out; }

    /// The descriptor of the file that is replaced at the end; -1 if there is none.
    int GetReplaced() const { return _target.file.Get(); }

    /// Adds text. @throws Failure when the system does not take it, e.g. a full disk.
    void Append(std::string_view text)
    {
        if (text.size() > _buffer.size() - _used)
            _AppendInPieces(text);
        else
        {
            std::copy(text.begin(), text.end(), _buffer.data() + _used);
            _used += text.size();
        }
    }

    /// Hands over what was added to a stream so far; does nothing for a file. @throws Failure.
    void Flush();

    /// Hands everything over and makes the file appear. @throws Failure.
    void Complete();

    /// Writes all of a text to standard output. @throws Failure.
    static void Print(std::string_view text);

private:
    void _OpenTemporary();
    void _OpenTemporaryElsewhere(const std::string& why);
    void _AppendInPieces(std::string_view text);
    void _Write(std::string_view text);
    void _WriteBuffer();
    void _Publish();
    void _Replace();
    void _WriteInPlace();

    std::string _name;    // for messages
    std::string _medium;  // the same, and where the text waits
    OutputTarget _target;
    FileDescriptor _elsewhere;  // the directory for temporary files
    TemporaryFile _temporary;
    std::string _whyInPlace;  // empty when the file can be replaced
    int _out = -1;            // where the text goes first
    std::vector<char> _buffer;
    std::size_t _used = 0;
};
}  // namespace nxtick

#endif
