// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_OUTPUTTARGET_H
#define NXTICK_OUTPUTTARGET_H

#include <sys/stat.h>

#include <string>

#include "FileDescriptor.h"

namespace nxtick
{
/// The file or stream that the name of an output leads to. It is looked up once and held open, so that nobody can put
/// something else in its place.
///
/// - A descriptor of this process, by a name such as /dev/stdout, /dev/fd/3 or /proc/self/fd/3 or a link to one:
///   `stream` is a duplicate of it.
/// - Something that is not a regular file, such as /dev/null or a pipe: `stream` is open on it.
/// - A regular file: `file` is open on it, and `directory` and `name` say where it is after all links. A file without a
///   directory can only be written in place: it is a descriptor of another process.
/// - Nothing yet: `directory` and `name` say where the file will be. If the name is a dangling link, that is its target.
///
/// A link in a directory like /tmp is followed only when it belongs to the user or to the directory's owner, even if
/// the system itself does not enforce that.
struct OutputTarget
{
    FileDescriptor stream;
    FileDescriptor file;
    struct stat status = {};  ///< of the file
    FileDescriptor directory;
    std::string name;
};

/// @return what @p path leads to. @throws Failure "cannot write NAME: reason", where @p shownName is the name.
OutputTarget FindOutputTarget(const std::string& path, const std::string& shownName);
}  // namespace nxtick

#endif
