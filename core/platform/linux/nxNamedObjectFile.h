// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECTFILE_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECTFILE_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/platform/linux/nxNamedObject.h"
#include "core/platform/linux/nxNamedObjectPlace.h"
#include "core/platform/nxDescriptor.h"

/// The outcome of a request for a named object.
enum class nxNamedObjectAnswer
{
    Opened,
    WrongRequest,  ///< The name refers to another kind, or no object can be made as requested.
    Busy,          ///< Another process has locked the table.
    Refused        ///< By the system; errno has the reason.
};

/// The named objects of one identity: a file of entries in memory, mapped by every process that has one of them open.
///
/// - Life of an entry: every process that has it open holds a shared lock of the file on the byte whose offset is the
///   entry's number. The system releases the lock when the process ends, in whatever way. An entry without a lock is dead,
///   whatever it contains, and may be used for any name.
/// - Validity: entries are searched and written under an exclusive lock on byte 0. The contents of an entry are valid only
///   for a process that holds that lock, or has held the entry's own lock without a break since it held that one.
/// - Descriptor: one serves all names. It is checked before every use. A process that has forked, or has closed
///   descriptors that it did not open, gets a new one and takes its locks again on it.
/// - Mapping: once an object is open nothing is unmapped any more, because threads may hold it or wait for it.
/// - Threads: one at a time.
///
/// Opening an object takes these steps. A kill after any of them leaves a file that the next process can use:
/// 1. Lock byte 0. The system releases the lock, and the file is as before.
/// 2. Map the part by which the file has grown. The file is as before.
/// 3. Find the entry of the name, a free one or a dead one, or grow the file. It may have more free entries.
/// 4. Lock the byte of the entry, shared. The system releases the lock, and the entry is as before.
/// 5. In a new object: mark the entry as free, make the object, write kind and name, mark the entry as used. The entry is
///    free until the last of these, and dead after it.
/// 6. Unlock byte 0. The entry is dead unless another process has it open.
class nxNamedObjectFile
{
public:
    /// Makes a new object in place. Returns false, with errno, when it cannot.
    using Initialiser = std::function<bool(nxNamedObject&)>;

    explicit nxNamedObjectFile(const nxNamedObjectPlace::Identity& identity) : _identity(identity) {}

    const nxNamedObjectPlace::Identity& GetIdentity() const { return _identity; }

    /// Finds the object that a live process has open under @p name, or makes it.
    /// @param object is set when the answer is Opened; otherwise errno has the reason.
    nxNamedObjectAnswer Open(const std::string& name, nxNamedObjectKind kind, const Initialiser& initialise,
                             nxNamedObject*& object);

    /// Whether, since the last call, the file was found to be removed while objects in it are open.
    bool WasRemoved() { return std::exchange(_wasRemoved, false); }

    /// Gives the child locks of its own on the objects that the parent has open.
    void AfterForkInChild();

private:
    // An object that this process has open.
    struct Opened
    {
        nxNamedObject* object;
        off_t number;
        nxNamedObjectKind kind;
    };

    nxNamedObjectAnswer _EnsureFile();
    bool _IsFileOurs() const;
    void _Forget();
    nxNamedObjectAnswer _LockAgain(int descriptor);
    void _LockEntries(int descriptor);
    bool _MapAll();
    bool _MapChunk();
    bool _Grow();
    nxNamedObjectAnswer _OpenInFile(const std::string& name, nxNamedObjectKind kind, const Initialiser& initialise,
                                    nxNamedObject*& object);
    nxNamedObjectAnswer _OpenUnderLock(const std::string& name, nxNamedObjectKind kind, const Initialiser& initialise,
                                       nxNamedObject*& object);
    off_t _Find(const std::string& name) const;
    off_t _FindFree();
    static nxNamedObjectAnswer _Create(nxNamedObject& entry, const std::string& name, nxNamedObjectKind kind,
                                       const Initialiser& initialise);
    static bool _HasName(const nxNamedObject& entry, const std::string& name);
    nxNamedObject& _Entry(off_t number) const;
    off_t _Count() const;

    nxNamedObjectPlace::Identity _identity;
    int _descriptor = -1;
    pid_t _process = 0;    // that opened the descriptor
    nxFileIdentity _file;  // for which it was opened
    bool _wasRemoved = false;
    std::vector<char*> _chunks;                       // the mapped file, piece by piece
    std::unordered_map<std::string, Opened> _opened;  // by name
    std::vector<bool> _isOpened;                      // by number
};

#endif
