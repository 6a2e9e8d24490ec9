#ifndef CORE_PLATFORM_NXNAMEDOBJECTTABLE_H
#define CORE_PLATFORM_NXNAMEDOBJECTTABLE_H

#include <sys/types.h>

#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/platform/nxNamedObject.h"

/// The named objects of one user: a file of entries in memory, mapped by every process that has one of them open.
///
/// - The file lies in a directory that only its user can enter, in /dev/shm or else in /tmp. Processes of different
///   process-id namespaces have tables of their own, because a mutex knows its owner by a number of that namespace.
/// - Life of an entry: every process that has it open holds a shared lock of the file on the byte whose offset is the
///   entry's number; the system takes the lock away when the process ends, however it ends. An entry that nobody has
///   locked is dead, whatever it contains: the next to ask for its name, or for a free entry, writes it anew.
/// - Searching and writing entries happens under an exclusive lock on byte 0. A process that is killed meanwhile leaves
///   an entry that is marked as unused.
/// - The locks belong to the open file and not to the process, so that closing another descriptor loses none. One
///   descriptor serves all names. It is looked at before every use: a process that has closed descriptors that it did
///   not open, or that has forked, gets a new one, on which its locks are taken again.
/// - Once something is open nothing is unmapped any more, because threads may be holding and waiting.
/// - Threads: any; a mutex of its own, which fork takes so that no child starts in the middle of a search.
class nxNamedObjectTable
{
public:
    static nxNamedObjectTable& GetInstance();

    /// Finds the object that some live process has open under @p name, or makes it.
    /// @param initialise makes a new object in place; false when it cannot.
    /// @return null, with errno set, when the name is longer than nxNamedObject::LongestName bytes or stands for
    ///         another kind, when @p initialise fails, or when the system refuses the directory, the file or the
    ///         memory.
    nxNamedObject* Open(const std::string& name, nxNamedObjectKind kind,
                        const std::function<bool(nxNamedObject&)>& initialise);

private:
    // What this process has open under a name.
    struct Opened
    {
        nxNamedObject* object;
        off_t number;
    };

    nxNamedObjectTable();

    // All of these are called with _mutex held.
    bool _EnsureFile();
    bool _IsFileOurs() const;
    void _Forget();
    void _LockAgain(int descriptor);
    bool _MapAll();
    bool _MapChunk();
    bool _Grow();
    nxNamedObject* _OpenOrThrow(const std::string& name, nxNamedObjectKind kind,
                                const std::function<bool(nxNamedObject&)>& initialise);
    nxNamedObject* _OpenUnderLock(const std::string& name, nxNamedObjectKind kind,
                                  const std::function<bool(nxNamedObject&)>& initialise);
    off_t _Find(const std::string& name) const;
    off_t _FindFree();
    bool _Create(nxNamedObject& entry, const std::string& name, nxNamedObjectKind kind,
                 const std::function<bool(nxNamedObject&)>& initialise);
    nxNamedObject& _Entry(off_t number) const;
    off_t _Count() const;

    static void _BeforeFork();
    static void _AfterForkInParent();
    static void _AfterForkInChild();

    std::mutex _mutex;
    int _descriptor = -1;
    // Whose descriptor it is, and which file it was opened on.
    pid_t _process = 0;
    dev_t _device = 0;
    ino_t _inode = 0;
    std::vector<char*> _chunks;                       // the mapped file, piece by piece
    std::unordered_map<std::string, Opened> _opened;  // by name
    std::vector<bool> _isOpened;                      // by number
};

#endif
