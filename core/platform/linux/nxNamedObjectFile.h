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

/// What came of a request for a named object.
enum class nxNamedObjectAnswer
{
    Opened,
    WrongRequest,  ///< The name stands for another kind, or nobody could make such an object.
    Busy,          ///< Another process is in the table at this moment.
    Refused        ///< By the system; errno has the reason.
};

/// The named objects of one identity: a file of entries in memory, mapped by every process that has one of them open.
///
/// - Life of an entry: every process that has it open holds a shared lock of the file on the byte whose offset is the
///   entry's number; the system takes the lock away when the process ends, however it ends. An entry that nobody has
///   locked is dead, whatever it contains: the next to ask for its name, or for a free entry, writes it anew.
/// - Searching and writing entries happens under an exclusive lock on byte 0. A process that is killed meanwhile leaves
///   an entry that is marked as unused. What an entry says is true only for those who hold that lock, or have held the
///   entry's own without a break since it was.
/// - One descriptor serves all names. It is looked at before every use: a process that has closed descriptors that it
///   did not open, or that has forked, gets a new one, on which its locks are taken again.
/// - Once something is open nothing is unmapped any more, because threads may be holding and waiting.
/// - Threads: one at a time.
class nxNamedObjectFile
{
public:
    /// Makes a new object in place; false, with errno, when it cannot.
    using Initialiser = std::function<bool(nxNamedObject&)>;

    explicit nxNamedObjectFile(const nxNamedObjectPlace::Identity& identity) : _identity(identity) {}

    const nxNamedObjectPlace::Identity& GetIdentity() const { return _identity; }

    /// Finds the object that some live process has open under @p name, or makes it.
    /// @param object is set when the answer is Opened; otherwise errno has the reason.
    nxNamedObjectAnswer Open(const std::string& name, nxNamedObjectKind kind, const Initialiser& initialise,
                             nxNamedObject*& object);

    /// Whether, since the last call, somebody turned out to have removed the file from under objects that are open.
    bool WasRemoved() { return std::exchange(_wasRemoved, false); }

    /// Makes what the parent has open the child's own.
    void AfterForkInChild();

private:
    // What this process has open under a name.
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
    // Whose descriptor it is, and which file it was opened on.
    pid_t _process = 0;
    dev_t _device = 0;
    ino_t _inode = 0;
    bool _wasRemoved = false;
    std::vector<char*> _chunks;                       // the mapped file, piece by piece
    std::unordered_map<std::string, Opened> _opened;  // by name
    std::vector<bool> _isOpened;                      // by number
};

#endif
