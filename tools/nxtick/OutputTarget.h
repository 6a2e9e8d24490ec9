#ifndef NXTICK_OUTPUTTARGET_H
#define NXTICK_OUTPUTTARGET_H

#include <sys/stat.h>

#include <string>

#include "FileDescriptor.h"

namespace nxtick
{
/// What the name of an output stands for. It is found once, and what was found then counts: everything is held open, so
/// that nobody can put something else in its place.
///
/// - A descriptor of this process, by a name such as /dev/stdout, /dev/fd/3 or /proc/self/fd/3 or a link to one:
///   `stream` is a duplicate of it.
/// - No regular file, such as /dev/null or a pipe: `stream` is open on it.
/// - A regular file: `file` is open on it, and `directory` and `name` tell where it stands, behind links. Without a
///   directory it can only be written in place: it is a descriptor of another process.
/// - Nothing: `directory` and `name` tell where the file will stand, which is behind a link when that leads to nothing.
///
/// A link in a directory like /tmp is followed only when it belongs to the user or to the directory's owner, whatever
/// the system's own setting for that is.
struct OutputTarget
{
    FileDescriptor stream;
    FileDescriptor file;
    struct stat status = {};  ///< of the file
    FileDescriptor directory;
    std::string name;
};

/// @return what @p path stands for. @throws Failure "cannot write NAME: reason", where @p shownName is the name.
OutputTarget FindOutputTarget(const std::string& path, const std::string& shownName);
}  // namespace nxtick

#endif
