// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXBACKGROUNDPROGRAM_H
#define CORE_PLATFORM_NXBACKGROUNDPROGRAM_H

#include <span>
#include <string>

class nxDescriptor;
class nxDirectory;

/// Programs of the system that do a task beside the process, at the lowest priority.
///
/// - A program is no child of the process: no SIGCHLD arrives for it, no wait() returns it, and it leaves no zombie. It
///   outlives the process. Only where the process itself adopts orphans (process 1 of a container, PR_SET_CHILD_SUBREAPER),
///   the system makes the program its child; Reap() then ends the zombie.
/// - It begins with the given directory as its current one, the null device as its standard streams, default signals and
///   none blocked, a session of its own, ordinary scheduling with nice 19 on the processors of the calling thread, and
///   PATH and LC_ALL alone in its environment. No shell is involved.
/// - Cost: the calling thread waits until the program has been loaded, about a millisecond. No memory of the process is
///   copied, whatever its size.
/// - Errors: the system's numbers. Threads: any.
class nxBackgroundProgram
{
public:
    nxBackgroundProgram() = delete;

    /// @param program an absolute path, or a name in /usr/bin or /bin.
    /// @return the absolute path of an executable file; empty if there is none.
    static std::string Find(const std::string& program);

    /// @param path what Find() returned. @param arguments those after the program's name.
    /// @param inherited a file that the program keeps open, as descriptor 3.
    /// @param process the number of the program's process. @return 0 when the program runs.
    static int Start(const std::string& path, std::span<const std::string> arguments, const nxDirectory& directory,
                     const nxDescriptor& inherited, int& process);

    /// Called after the end of the program. @return whether the process need not call it again.
    static bool Reap(int process);
};

#endif
