// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXUNNAMEDFILE_H
#define CORE_PLATFORM_NXUNNAMEDFILE_H

#include <string>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"

/// A new file that has no name until it is complete, so that nothing is left of it however the process ends.
///
/// Where the file system cannot make such files, or /proc is missing, the file has a name that nobody can guess: the prefix
/// and 16 hexadecimal digits. The object removes it when it is destroyed; a process that is killed leaves it behind.
///
/// - Errors: operations return the system's error number, 0 when they succeed.
/// - Ownership: the directory belongs to the caller and stays open as long as the object. A forked child removes nothing.
/// - Threads: like an int.
class NX_CORE_API nxUnnamedFile
{
public:
    /// @param prefix of the names that the file has before it is complete.
    explicit nxUnnamedFile(std::string prefix);
    nxUnnamedFile(const nxUnnamedFile&) = delete;
    nxUnnamedFile& operator=(const nxUnnamedFile&) = delete;
    ~nxUnnamedFile() { Drop(); }

    /// Creates the file, open for reading and writing. The object has none yet.
    /// @param directory a descriptor of the directory.
    /// @param mode permissions; the process's mask takes some away.
    [[nodiscard]] int Create(int directory, unsigned mode);

    bool IsOpen() const { return _file.IsOpen(); }
    const nxDescriptor& GetDescriptor() const { return _file; }
    /// The name that it has before it is complete; usually empty.
    const std::string& GetName() const { return _name; }

    /// Gives the file a name of the directory that nothing has. @return EEXIST when something has it, also a link.
    [[nodiscard]] int Publish(const std::string& name);
    /// Gives the file a name of the directory in the place of the file or link that has it, in one step.
    [[nodiscard]] int Replace(const std::string& name);

    /// Closes the file, and removes it if it is not complete.
    void Drop();

    /// Creates an empty file with a name that nobody can guess, which stays. @param name its name in the directory.
    [[nodiscard]] static int CreateNamed(int directory, const std::string& prefix, unsigned mode, nxDescriptor& file,
                                         std::string& name);

private:
    int _Link(const std::string& name) const;
    int _LinkBetween();
    int _RenameToFree(const std::string& name);
    void _RemoveName();

    std::string _prefix;
    nxDescriptor _file;
    int _directory = -1;
    int _process = 0;   // that has made the file
    std::string _name;  // empty while it has none, and when it is complete
};

#endif
