#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECTTABLE_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECTTABLE_H

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/platform/linux/nxNamedObjectFile.h"

/// The named objects of this process, in a file for each identity that it has had: a process that drops its privileges
/// goes on in the table of the user that it has become, and keeps what it had open before.
///
/// - Threads: any; a mutex of its own, which fork takes so that no child starts in the middle of a search. Nobody sleeps
///   with it.
class nxNamedObjectTable
{
public:
    using Notice = nxNamedLocks::Notice;

    static nxNamedObjectTable& GetInstance();

    /// Finds the object that some live process has open under @p name, or makes it. Waits up to five seconds for other
    /// processes that are in the table.
    /// @param initialise makes a new object in place; false, with errno, when it cannot.
    /// @return null, with errno set, when the name is longer than nxNamedObject::LongestName bytes or stands for
    ///         another kind, when @p initialise fails, when the system refuses the place, the file or the memory, or does
    ///         not tell who the process is, or when another process has the table locked for too long (ETIMEDOUT).
    nxNamedObject* Open(const std::string& name, nxNamedObjectKind kind,
                        const nxNamedObjectFile::Initialiser& initialise, Notice& notice);

private:
    nxNamedObjectTable();

    // All of these are called with _mutex held.
    nxNamedObjectAnswer _Try(const std::string& name, nxNamedObjectKind kind,
                             const nxNamedObjectFile::Initialiser& initialise, nxNamedObject*& object, Notice& notice);
    nxNamedObjectFile* _FileOfNow();
    Notice _Refused();

    static void _BeforeFork();
    static void _AfterForkInParent();
    static void _AfterForkInChild();

    std::mutex _mutex;
    std::vector<std::unique_ptr<nxNamedObjectFile>> _files;
    nxNamedObjectFile* _last = nullptr;  // the file of the identity that was seen last,
    pid_t _process = 0;                  // in this process
    bool _isRefused = false;
};

#endif
