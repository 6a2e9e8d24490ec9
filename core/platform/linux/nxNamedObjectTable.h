// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECTTABLE_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECTTABLE_H

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/platform/linux/nxNamedObjectFile.h"
#include "core/platform/nxNamedLockNotice.h"

/// The named objects of this process, in a file for each identity that it has had. A process that drops its privileges
/// continues with the table of its new user and keeps the objects that it had open before.
///
/// - Threads: any. The mutex is taken around a fork too, so that no child starts in the middle of a search. No thread
///   sleeps while it holds the mutex.
class nxNamedObjectTable
{
public:
    static nxNamedObjectTable& GetInstance();

    /// Finds the object that a live process has open under @p name, or makes it. Waits up to five seconds for other
    /// processes that have locked the table.
    /// @param initialise makes a new object in place; it returns false, with errno, when it cannot.
    /// @return null, with errno set, when the name is longer than nxNamedObject::LongestName bytes or refers to
    ///         another kind, when @p initialise fails, when the system refuses the place, the file or the memory, or does
    ///         not tell who the process is, or when another process has the table locked for too long (ETIMEDOUT).
    nxNamedObject* Open(const std::string& name, nxNamedObjectKind kind,
                        const nxNamedObjectFile::Initialiser& initialise, nxNamedLockNotice& notice);

private:
    nxNamedObjectTable();

    // The proof that a caller holds the mutex.
    using Guard = std::lock_guard<std::mutex>;

    nxNamedObjectAnswer _Try(const Guard&, const std::string& name, nxNamedObjectKind kind,
                             const nxNamedObjectFile::Initialiser& initialise, nxNamedObject*& object,
                             nxNamedLockNotice& notice);
    nxNamedObjectFile* _FileOfNow(const Guard&);
    nxNamedLockNotice _Refused(const Guard&);

    static void _BeforeFork();
    static void _AfterForkInParent();
    static void _AfterForkInChild();

    std::mutex _mutex;
    std::vector<std::unique_ptr<nxNamedObjectFile>> _files;
    nxNamedObjectFile* _last = nullptr;  // the file of the latest identity
    pid_t _process = 0;                  // that had this identity
    bool _isRefused = false;
};

#endif
