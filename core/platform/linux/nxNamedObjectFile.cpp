// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxNamedObjectFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>

#include "core/platform/linux/nxRecordLock.h"
#include "core/platform/linux/nxScopedDescriptor.h"
#include "core/platform/linux/nxSystemCall.h"

namespace
{
// Entry 0 of the file is the header.
constexpr std::uint64_t Magic = 0x6E78'6F62'6A65'6374;
constexpr off_t EntryBytes = 512;
constexpr off_t EntriesInChunk = 128;
constexpr off_t ChunkBytes = EntryBytes * EntriesInChunk;
constexpr std::size_t MostChunks = 8192;  // A million entries.
constexpr off_t None = 0;                 // No entry has the header's number.

static_assert(sizeof(nxNamedObject) <= EntryBytes, "the layout of the file");

// The exclusive lock under which entries are searched and written. It is only tried, because the process that holds it may
// be stopped, by a debugger for example, for any time.
class TableLock
{
public:
    explicit TableLock(int descriptor) : _descriptor(descriptor), _locked(nxRecordLock::TryExclusive(descriptor, 0)) {}
    ~TableLock()
    {
        if (_locked)
            nxRecordLock::Unlock(_descriptor, 0);
    }
    TableLock(const TableLock&) = delete;
    TableLock& operator=(const TableLock&) = delete;

    bool IsLocked() const { return _locked; }
    static nxNamedObjectAnswer WhyNot()
    {
        return errno == EAGAIN ? nxNamedObjectAnswer::Busy : nxNamedObjectAnswer::Refused;
    }

private:
    int _descriptor;
    bool _locked;
};

// Growing a file beyond the limit of this process raises a signal that ends it.
bool IsWithinFileSizeLimit(off_t size)
{
    struct rlimit limit
    {
    };
    return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
           static_cast<rlim_t>(size) <= limit.rlim_cur;
}

// Reserves the memory now, so that no later access can fail for lack of it.
bool Reserve(int descriptor, off_t offset, off_t bytes)
{
    const auto reserve = [&]
    {
        errno = posix_fallocate(descriptor, offset, bytes);
        return errno == 0 ? 0 : -1;
    };
    return nxSystemCall::RetryInterrupted(reserve) == 0;
}
}  // namespace

nxNamedObjectAnswer nxNamedObjectFile::Open(const std::string& name, nxNamedObjectKind kind,
                                            const Initialiser& initialise, nxNamedObject*& object)
{
    nxNamedObjectAnswer answer = nxNamedObjectAnswer::Refused;
    try
    {
        answer = _EnsureFile();
        if (answer == nxNamedObjectAnswer::Opened)
            answer = _OpenInFile(name, kind, initialise, object);
    }
    catch (const std::bad_alloc&)
    {
        answer = nxNamedObjectAnswer::Refused;
        errno = ENOMEM;
    }
    if (answer != nxNamedObjectAnswer::Opened && _opened.empty())
        _Forget();
    return answer;
}

nxNamedObjectAnswer nxNamedObjectFile::_OpenInFile(const std::string& name, nxNamedObjectKind kind,
                                                   const Initialiser& initialise, nxNamedObject*& object)
{
    if (const auto found = _opened.find(name); found != _opened.end())
    {
        object = found->second.object;
        if (found->second.kind == kind)
            return nxNamedObjectAnswer::Opened;
        errno = EEXIST;
        return nxNamedObjectAnswer::WrongRequest;
    }
    const TableLock lock(_descriptor);
    return lock.IsLocked() ? _OpenUnderLock(name, kind, initialise, object) : TableLock::WhyNot();
}

nxNamedObjectAnswer nxNamedObjectFile::_OpenUnderLock(const std::string& name, nxNamedObjectKind kind,
                                                      const Initialiser& initialise, nxNamedObject*& object)
{
    if (!_MapAll())
        return nxNamedObjectAnswer::Refused;
    off_t number = _Find(name);
    const bool alive = number != None && nxRecordLock::IsLockedByAnother(_descriptor, number);
    if (alive && _Entry(number).kind != kind)
    {
        errno = EEXIST;
        return nxNamedObjectAnswer::WrongRequest;
    }
    if (number == None)
        number = _FindFree();
    if (number == None)
        return nxNamedObjectAnswer::Refused;
    nxNamedObject& entry = _Entry(number);
    // All memory is allocated first: an entry that is locked but not remembered would look dead to this process.
    _isOpened.resize(static_cast<std::size_t>(_Count()));
    const auto opened = _opened.insert_or_assign(name, Opened{&entry, number, kind}).first;
    // Locked before it is written, so that no other process takes it meanwhile.
    nxNamedObjectAnswer answer = nxNamedObjectAnswer::Refused;
    if (nxRecordLock::TryShared(_descriptor, number))
        answer = alive ? nxNamedObjectAnswer::Opened : _Create(entry, name, kind, initialise);
    if (answer != nxNamedObjectAnswer::Opened)
    {
        nxRecordLock::Unlock(_descriptor, number);
        _opened.erase(opened);
        return answer;
    }
    _isOpened[static_cast<std::size_t>(number)] = true;
    object = &entry;
    return answer;
}

nxNamedObjectAnswer nxNamedObjectFile::_Create(nxNamedObject& entry, const std::string& name, nxNamedObjectKind kind,
                                               const Initialiser& initialise)
{
    entry.used.store(0);
    if (!initialise(entry))
        return errno == EINVAL ? nxNamedObjectAnswer::WrongRequest : nxNamedObjectAnswer::Refused;
    entry.kind = kind;
    entry.nameLength = static_cast<std::uint32_t>(name.size());
    std::memcpy(entry.name, name.data(), name.size());
    entry.used.store(1);
    return nxNamedObjectAnswer::Opened;
}

bool nxNamedObjectFile::_HasName(const nxNamedObject& entry, const std::string& name)
{
    return entry.nameLength == name.size() && std::memcmp(entry.name, name.data(), name.size()) == 0;
}

off_t nxNamedObjectFile::_Find(const std::string& name) const
{
    for (off_t number = 1; number < _Count(); ++number)
    {
        const nxNamedObject& entry = _Entry(number);
        if (entry.used.load() != 0 && _HasName(entry, name))
            return number;
    }
    return None;
}

// A free entry, a dead one or a new one, in this order: a process that has lost its locks, because it closed all
// descriptors, keeps its entries as long as possible.
off_t nxNamedObjectFile::_FindFree()
{
    for (off_t number = 1; number < _Count(); ++number)
    {
        if (_Entry(number).used.load() == 0)
            return number;
    }
    _isOpened.resize(static_cast<std::size_t>(_Count()));
    for (off_t number = 1; number < _Count(); ++number)
    {
        if (!_isOpened[static_cast<std::size_t>(number)] && !nxRecordLock::IsLockedByAnother(_descriptor, number))
            return number;
    }
    const off_t first = _Count();
    return _Grow() && _MapChunk() ? first : None;
}

bool nxNamedObjectFile::_Grow()
{
    const off_t size = static_cast<off_t>(_chunks.size()) * ChunkBytes;
    if (_chunks.size() == MostChunks || !IsWithinFileSizeLimit(size + ChunkBytes))
    {
        errno = ENOSPC;
        return false;
    }
    return Reserve(_descriptor, size, ChunkBytes);
}

bool nxNamedObjectFile::_MapChunk()
{
    void* const chunk = mmap(nullptr, ChunkBytes, PROT_READ | PROT_WRITE, MAP_SHARED, _descriptor,
                             static_cast<off_t>(_chunks.size()) * ChunkBytes);
    if (chunk == MAP_FAILED)
        return false;
    _chunks.push_back(static_cast<char*>(chunk));
    return true;
}

// Maps the header and the part that other processes have added.
bool nxNamedObjectFile::_MapAll()
{
    struct stat status
    {
    };
    if (fstat(_descriptor, &status) != 0)
        return false;
    if (status.st_size < ChunkBytes && !_Grow())
        return false;
    const auto chunks = static_cast<std::size_t>(std::max(status.st_size / ChunkBytes, off_t{1}));
    if (chunks > MostChunks)
    {
        errno = EFBIG;
        return false;
    }
    while (_chunks.size() < chunks)
    {
        if (!_MapChunk())
            return false;
    }
    // The default order, because a file is opened seldom; the lock of the table orders it as well.
    auto& magic = *reinterpret_cast<std::atomic<std::uint64_t>*>(_chunks.front());
    if (magic.load() == 0)
        magic.store(Magic);
    errno = EPROTO;
    return magic.load() == Magic;
}

bool nxNamedObjectFile::_IsFileOurs() const
{
    struct stat status
    {
    };
    return _descriptor >= 0 && _process == getpid() && fstat(_descriptor, &status) == 0 &&
           nxFileIdentity(status) == _file && status.st_nlink != 0;
}

nxNamedObjectAnswer nxNamedObjectFile::_EnsureFile()
{
    if (_IsFileOurs())
        return nxNamedObjectAnswer::Opened;
    nxScopedDescriptor opened(nxNamedObjectPlace::Open(_identity));
    struct stat status
    {
    };
    if (opened.Get() < 0 || fstat(opened.Get(), &status) != 0)
        return nxNamedObjectAnswer::Refused;
    if (nxFileIdentity(status) == _file)
    {
        if (const nxNamedObjectAnswer answer = _LockAgain(opened.Get()); answer != nxNamedObjectAnswer::Opened)
            return answer;
    }
    else
    {
        // The file was removed. Objects that are open stay usable through the old descriptor.
        _wasRemoved = !_opened.empty();
        _chunks.clear();
        _opened.clear();
        _isOpened.clear();
    }
    _descriptor = opened.Release();
    _process = getpid();
    _file = nxFileIdentity(status);
    return nxNamedObjectAnswer::Opened;
}

// While nothing is open, the next attempt starts from the beginning, because the obstacle may be gone by then.
void nxNamedObjectFile::_Forget()
{
    const int error = errno;
    for (char* const chunk : _chunks)
        munmap(chunk, ChunkBytes);
    _chunks.clear();
    _isOpened.clear();
    if (_IsFileOurs())
        close(_descriptor);
    _descriptor = -1;
    errno = error;
}

// Takes the shared locks of all open objects on another descriptor. After a fork the old one is closed, because parent and
// child share it and the objects that one of them opens later must not live as long as the other.
nxNamedObjectAnswer nxNamedObjectFile::_LockAgain(int descriptor)
{
    if (_process != getpid())
    {
        // The parent's locks keep every entry alive until the child has its own.
        _LockEntries(descriptor);
        struct stat status
        {
        };
        if (fstat(_descriptor, &status) == 0 && nxFileIdentity(status) == _file)
            close(_descriptor);
        return nxNamedObjectAnswer::Opened;
    }
    // The locks ended with the descriptor that other code has closed, and another process may have taken an entry since or
    // be taking it now. Only the lock of the table excludes that.
    const TableLock lock(descriptor);
    if (!lock.IsLocked())
        return TableLock::WhyNot();
    _LockEntries(descriptor);
    return nxNamedObjectAnswer::Opened;
}

// Forgets the entries that are not the same objects any more.
void nxNamedObjectFile::_LockEntries(int descriptor)
{
    for (auto opened = _opened.begin(); opened != _opened.end();)
    {
        const auto& [object, number, kind] = opened->second;
        const bool kept = nxRecordLock::TryShared(descriptor, number) && object->used.load() != 0 &&
                          object->kind == kind && _HasName(*object, opened->first);
        if (!kept)
        {
            nxRecordLock::Unlock(descriptor, number);
            _isOpened[static_cast<std::size_t>(number)] = false;
        }
        opened = kept ? std::next(opened) : _opened.erase(opened);
    }
}

// The parent's locks keep the objects alive until the child has taken its own. If it cannot, it depends on those of the
// parent, and the next use tries again.
void nxNamedObjectFile::AfterForkInChild()
{
    const int error = errno;
    try
    {
        if (_descriptor >= 0)
            _EnsureFile();
    }
    catch (const std::bad_alloc&)
    {
    }
    errno = error;
}

nxNamedObject& nxNamedObjectFile::_Entry(off_t number) const
{
    char* const chunk = _chunks[static_cast<std::size_t>(number / EntriesInChunk)];
    return *reinterpret_cast<nxNamedObject*>(chunk + number % EntriesInChunk * EntryBytes);
}

off_t nxNamedObjectFile::_Count() const { return static_cast<off_t>(_chunks.size()) * EntriesInChunk; }
