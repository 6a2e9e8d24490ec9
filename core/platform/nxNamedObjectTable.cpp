#include "core/platform/nxNamedObjectTable.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>

#include "core/platform/nxUninterrupted.h"

namespace
{
// Entry 0 of the file is the header. Processes of different builds share the file, so a change of the layout changes
// the file's name.
constexpr const char* FileName = "objects-1";
constexpr std::uint64_t Magic = 0x6E78'6F62'6A65'6374;
constexpr off_t EntryBytes = 512;
constexpr off_t EntriesInChunk = 128;
constexpr off_t ChunkBytes = EntryBytes * EntriesInChunk;
constexpr std::size_t MostChunks = 8192;  // A million entries.
constexpr off_t None = 0;                 // No entry has the header's number.

static_assert(sizeof(nxNamedObject) <= EntryBytes);
static_assert(sizeof(pthread_mutex_t) == 40 || sizeof(void*) != 8, "the layout of the file");

// Closes on destruction.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : _descriptor(descriptor) {}
    ~Descriptor()
    {
        if (_descriptor >= 0)
            close(_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return _descriptor; }
    int Release()
    {
        const int descriptor = _descriptor;
        _descriptor = -1;
        return descriptor;
    }

private:
    int _descriptor;
};

// Keeps errno through a clean-up.
class ErrnoKeeper
{
public:
    ErrnoKeeper() : _errno(errno) {}
    ~ErrnoKeeper() { errno = _errno; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int _errno;
};

struct flock LockOf(short type, off_t byte)
{
    struct flock lock
    {
    };
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

bool SetLock(int descriptor, int command, short type, off_t byte) noexcept
{
    struct flock lock = LockOf(type, byte);
    return nxUninterrupted::Do([&] { return fcntl(descriptor, command, &lock); }) == 0;
}

bool LockShared(int descriptor, off_t number) { return SetLock(descriptor, F_OFD_SETLK, F_RDLCK, number); }

void Unlock(int descriptor, off_t number)
{
    const ErrnoKeeper keeper;
    SetLock(descriptor, F_OFD_SETLK, F_UNLCK, number);
}

// Whether another process has the entry open. In doubt it has.
bool IsAlive(int descriptor, off_t number)
{
    struct flock lock = LockOf(F_WRLCK, number);
    return fcntl(descriptor, F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

// The exclusive lock under which entries are searched and written.
class TableLock
{
public:
    explicit TableLock(int descriptor) : _descriptor(descriptor), _locked(SetLock(descriptor, F_OFD_SETLKW, F_WRLCK, 0))
    {
    }
    ~TableLock()
    {
        if (_locked)
            Unlock(_descriptor, 0);
    }
    TableLock(const TableLock&) = delete;
    TableLock& operator=(const TableLock&) = delete;

    bool IsLocked() const { return _locked; }

private:
    int _descriptor;
    bool _locked;
};

// Neither another user nor anybody in our group has had a hand in it.
bool IsPrivate(const struct stat& status) { return status.st_uid == geteuid() && (status.st_mode & 077) == 0; }

std::string ProcessNamespace()
{
    char text[64];  // "pid:[4026531836]"
    const ssize_t length = readlink("/proc/self/ns/pid", text, sizeof text);
    std::string digits;
    for (ssize_t i = 0; i < length; ++i)
    {
        if (text[i] >= '0' && text[i] <= '9')
            digits += text[i];
    }
    return digits.empty() ? "0" : digits;
}

// Opens the user's directory, and makes it first where there is none.
int OpenDirectory()
{
    const std::string name = "/nxcore-" + std::to_string(geteuid()) + '-' + ProcessNamespace();
    for (const char* const root : {"/dev/shm", "/tmp"})
    {
        const std::string path = root + name;
        if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
            continue;
        return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }
    return -1;
}

// Opens the table, and makes an empty one where there is none.
int OpenFile()
{
    const Descriptor directory(OpenDirectory());
    struct stat status
    {
    };
    if (directory.Get() < 0 || fstat(directory.Get(), &status) != 0)
        return -1;
    if (!IsPrivate(status))
    {
        errno = EPERM;
        return -1;
    }
    const Descriptor opened(openat(directory.Get(), FileName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (opened.Get() < 0 || fstat(opened.Get(), &status) != 0)
        return -1;
    if (!S_ISREG(status.st_mode) || !IsPrivate(status) || status.st_nlink != 1)
    {
        errno = EPERM;
        return -1;
    }
    // A process may have been started without its standard streams; their numbers are not for us.
    return fcntl(opened.Get(), F_DUPFD_CLOEXEC, 3);
}

bool IsSameFile(const struct stat& status, dev_t device, ino_t inode)
{
    return status.st_dev == device && status.st_ino == inode;
}

// Growing a file beyond this process's limit raises a signal that ends the process.
bool IsWithinFileSizeLimit(off_t size)
{
    struct rlimit limit
    {
    };
    return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
           static_cast<rlim_t>(size) <= limit.rlim_cur;
}

// Reserves the memory, so that no later access finds it used up.
bool Reserve(int descriptor, off_t offset, off_t bytes)
{
    const auto reserve = [&]
    {
        errno = posix_fallocate(descriptor, offset, bytes);
        return errno == 0 ? 0 : -1;
    };
    return nxUninterrupted::Do(reserve) == 0;
}
}  // namespace

nxNamedObjectTable& nxNamedObjectTable::GetInstance()
{
    // Never destroyed, and made without an allocation, because those who ask must not throw.
    alignas(nxNamedObjectTable) static unsigned char place[sizeof(nxNamedObjectTable)];
    static nxNamedObjectTable& table = *new (place) nxNamedObjectTable;
    return table;
}

namespace
{
// Made while the library is loaded: a fork during a first use would leave the child waiting for it for ever.
[[maybe_unused]] const nxNamedObjectTable& madeAtLoad = nxNamedObjectTable::GetInstance();
}  // namespace

nxNamedObjectTable::nxNamedObjectTable() { pthread_atfork(&_BeforeFork, &_AfterForkInParent, &_AfterForkInChild); }

nxNamedObject* nxNamedObjectTable::Open(const std::string& name, nxNamedObjectKind kind,
                                        const std::function<bool(nxNamedObject&)>& initialise)
{
    if (name.size() > nxNamedObject::LongestName)
    {
        errno = ENAMETOOLONG;
        return nullptr;
    }
    const std::lock_guard<std::mutex> guard(_mutex);
    nxNamedObject* object = nullptr;
    try
    {
        object = _OpenOrThrow(name, kind, initialise);
    }
    catch (const std::bad_alloc&)
    {
        errno = ENOMEM;
    }
    if (object == nullptr && _opened.empty())
        _Forget();
    return object;
}

nxNamedObject* nxNamedObjectTable::_OpenOrThrow(const std::string& name, nxNamedObjectKind kind,
                                                const std::function<bool(nxNamedObject&)>& initialise)
{
    if (!_EnsureFile())
        return nullptr;
    if (const auto found = _opened.find(name); found != _opened.end())
    {
        if (found->second.object->kind == kind)
            return found->second.object;
        errno = EEXIST;
        return nullptr;
    }
    const TableLock lock(_descriptor);
    return lock.IsLocked() ? _OpenUnderLock(name, kind, initialise) : nullptr;
}

nxNamedObject* nxNamedObjectTable::_OpenUnderLock(const std::string& name, nxNamedObjectKind kind,
                                                  const std::function<bool(nxNamedObject&)>& initialise)
{
    if (!_MapAll())
        return nullptr;
    off_t number = _Find(name);
    const bool alive = number != None && IsAlive(_descriptor, number);
    if (alive && _Entry(number).kind != kind)
    {
        errno = EEXIST;
        return nullptr;
    }
    if (number == None)
        number = _FindFree();
    if (number == None)
        return nullptr;
    nxNamedObject& entry = _Entry(number);
    // All memory is taken first: an entry that is locked and not remembered would look dead to this process.
    _isOpened.resize(static_cast<std::size_t>(_Count()));
    const auto opened = _opened.insert_or_assign(name, Opened{&entry, number}).first;
    // Locked before it is written: from its first byte on, the entry is somebody's.
    if (!LockShared(_descriptor, number) || (!alive && !_Create(entry, name, kind, initialise)))
    {
        Unlock(_descriptor, number);
        _opened.erase(opened);
        return nullptr;
    }
    _isOpened[static_cast<std::size_t>(number)] = true;
    return &entry;
}

bool nxNamedObjectTable::_Create(nxNamedObject& entry, const std::string& name, nxNamedObjectKind kind,
                                 const std::function<bool(nxNamedObject&)>& initialise)
{
    entry.used.store(0);
    if (!initialise(entry))
        return false;
    entry.kind = kind;
    entry.nameLength = static_cast<std::uint32_t>(name.size());
    std::memcpy(entry.name, name.data(), name.size());
    entry.used.store(1);
    return true;
}

off_t nxNamedObjectTable::_Find(const std::string& name) const
{
    for (off_t number = 1; number < _Count(); ++number)
    {
        const nxNamedObject& entry = _Entry(number);
        if (entry.used.load() != 0 && entry.nameLength == name.size() &&
            std::memcmp(entry.name, name.data(), name.size()) == 0)
            return number;
    }
    return None;
}

// A free entry, a dead one, or a new one, in this order: a process that has lost its locks, because it closed all
// descriptors, keeps its entries to itself as long as possible.
off_t nxNamedObjectTable::_FindFree()
{
    for (off_t number = 1; number < _Count(); ++number)
    {
        if (_Entry(number).used.load() == 0)
            return number;
    }
    _isOpened.resize(static_cast<std::size_t>(_Count()));
    for (off_t number = 1; number < _Count(); ++number)
    {
        if (!_isOpened[static_cast<std::size_t>(number)] && !IsAlive(_descriptor, number))
            return number;
    }
    const off_t first = _Count();
    return _Grow() && _MapChunk() ? first : None;
}

bool nxNamedObjectTable::_Grow()
{
    const off_t size = static_cast<off_t>(_chunks.size()) * ChunkBytes;
    if (_chunks.size() == MostChunks || !IsWithinFileSizeLimit(size + ChunkBytes))
    {
        errno = ENOSPC;
        return false;
    }
    return Reserve(_descriptor, size, ChunkBytes);
}

bool nxNamedObjectTable::_MapChunk()
{
    void* const chunk = mmap(nullptr, ChunkBytes, PROT_READ | PROT_WRITE, MAP_SHARED, _descriptor,
                             static_cast<off_t>(_chunks.size()) * ChunkBytes);
    if (chunk == MAP_FAILED)
        return false;
    _chunks.push_back(static_cast<char*>(chunk));
    return true;
}

// Maps what others have added since, and the header.
bool nxNamedObjectTable::_MapAll()
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
    auto& magic = *reinterpret_cast<std::atomic<std::uint64_t>*>(_chunks.front());
    if (magic.load() == 0)
        magic.store(Magic);
    errno = EPROTO;
    return magic.load() == Magic;
}

bool nxNamedObjectTable::_IsFileOurs() const
{
    struct stat status
    {
    };
    return _descriptor >= 0 && _process == getpid() && fstat(_descriptor, &status) == 0 &&
           IsSameFile(status, _device, _inode) && status.st_nlink != 0;
}

bool nxNamedObjectTable::_EnsureFile()
{
    if (_IsFileOurs())
        return true;
    Descriptor opened(OpenFile());
    struct stat status
    {
    };
    if (opened.Get() < 0 || fstat(opened.Get(), &status) != 0)
        return false;
    if (IsSameFile(status, _device, _inode))
    {
        _LockAgain(opened.Get());
    }
    else
    {
        // Somebody has removed the file. What is open goes on as it is, on the old descriptor.
        _chunks.clear();
        _opened.clear();
        _isOpened.clear();
    }
    _descriptor = opened.Release();
    _process = getpid();
    _device = status.st_dev;
    _inode = status.st_ino;
    return true;
}

// While nothing is open, the next attempt starts from scratch: what was in the way may be gone by then.
void nxNamedObjectTable::_Forget()
{
    const ErrnoKeeper keeper;
    for (char* const chunk : _chunks)
        munmap(chunk, ChunkBytes);
    _chunks.clear();
    _isOpened.clear();
    if (_IsFileOurs())
        close(_descriptor);
    _descriptor = -1;
}

// Takes the shared locks of all that is open on another descriptor, and gives up the old one if a fork has made it
// common with the parent: whatever either of the two opens later must not live as long as the other.
void nxNamedObjectTable::_LockAgain(int descriptor)
{
    for (auto opened = _opened.begin(); opened != _opened.end();)
    {
        const auto& [object, number] = opened->second;
        const bool lost = !LockShared(descriptor, number) || object->nameLength != opened->first.size() ||
                          std::memcmp(object->name, opened->first.data(), opened->first.size()) != 0;
        if (lost)
            _isOpened[static_cast<std::size_t>(number)] = false;
        opened = lost ? _opened.erase(opened) : std::next(opened);
    }
    struct stat status
    {
    };
    if (_process != getpid() && fstat(_descriptor, &status) == 0 && IsSameFile(status, _device, _inode))
        close(_descriptor);
}

nxNamedObject& nxNamedObjectTable::_Entry(off_t number) const
{
    char* const chunk = _chunks[static_cast<std::size_t>(number / EntriesInChunk)];
    return *reinterpret_cast<nxNamedObject*>(chunk + number % EntriesInChunk * EntryBytes);
}

off_t nxNamedObjectTable::_Count() const { return static_cast<off_t>(_chunks.size()) * EntriesInChunk; }

void nxNamedObjectTable::_BeforeFork() { GetInstance()._mutex.lock(); }

void nxNamedObjectTable::_AfterForkInParent() { GetInstance()._mutex.unlock(); }

// The parent's locks keep everything alive until this has taken locks for the child.
void nxNamedObjectTable::_AfterForkInChild()
{
    const ErrnoKeeper keeper;
    nxNamedObjectTable& table = GetInstance();
    try
    {
        if (table._descriptor >= 0)
            table._EnsureFile();
    }
    catch (const std::bad_alloc&)
    {
        // The next use tries again; until then the child lives on its parent's locks.
    }
    table._mutex.unlock();
}
