#ifndef NXTICK_OUTPUTFILE_H
#define NXTICK_OUTPUTFILE_H

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace nxtick
{
/// A file that appears under its name only when it is complete, or standard output.
///
/// The text is written to a temporary file in the same directory, which Complete() renames. When the object is
/// destroyed before that, or a signal ends the program (SIGHUP, SIGINT, SIGQUIT, SIGTERM), the temporary file is
/// removed and a file that had the name before is as it was. A name that belongs to something else than a file, such as
/// /dev/null or a pipe, is written to directly. One object with a name exists at a time.
class OutputFile
{
public:
    /// @param path empty for standard output. @throws Failure when it cannot be created.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Adds text. @throws Failure when the system does not take it, e.g. a full disk.
    void Append(std::string_view text)
    {
        if (text.size() > _buffer.size() - _used)
            _AppendInPieces(text);
        else
        {
            std::memcpy(_buffer.data() + _used, text.data(), text.size());
            _used += text.size();
        }
    }

    /// Hands everything over and makes the file appear. @throws Failure.
    void Complete();

    /// Writes all of a text to standard output. @throws Failure.
    static void Print(std::string_view text);

private:
    void _AppendInPieces(std::string_view text);
    void _Flush();
    void _OpenTemporary(unsigned mode);
    void _Close();
    [[noreturn]] void _Fail() const;

    std::string _name;       // for messages
    std::string _path;       // where the complete file goes; empty when the text goes there directly
    std::string _temporary;  // what has to be removed unless the file is completed
    int _file = -1;
    std::vector<char> _buffer;
    std::size_t _used = 0;
};
}  // namespace nxtick

#endif
