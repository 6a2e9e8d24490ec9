#ifndef CORE_THREAD_NXTHREADANNOTATIONS_H
#define CORE_THREAD_NXTHREADANNOTATIONS_H

/// @file
/// Lets clang prove at compile time that guarded data is touched only under its lock (-Wthread-safety).
///
/// The library's locks and guards carry these marks already. Mark your own data and functions with them:
/// @code
/// class Book
/// {
///     void _Sort() NX_REQUIRES(_lock);           // callers hold _lock
///     nxMutex _lock;
///     std::vector<Order> _orders NX_GUARDED_BY(_lock);
/// };
/// @endcode
/// Every macro is empty for other compilers. A lock taken by TryLock() is not seen by the analysis, which cannot look
/// into a returned error: call AssertHeld() in the branch where the lock is held.

#if defined(__clang__)
    #define NX_THREAD_ANNOTATION(x) __attribute__((x))
#else
    /// The attribute @p x where the compiler knows it, else nothing; made for the macros below.
    #define NX_THREAD_ANNOTATION(x)
#endif

/// A class whose objects are locks. @p x is its name in the compiler's messages.
#define NX_CAPABILITY(x) NX_THREAD_ANNOTATION(capability(x))
/// A class that locks in its constructor and unlocks in its destructor.
#define NX_SCOPED_CAPABILITY NX_THREAD_ANNOTATION(scoped_lockable)

/// Data that is touched only while the lock is held.
#define NX_GUARDED_BY(x) NX_THREAD_ANNOTATION(guarded_by(x))
/// A pointer to data that is touched only while the lock is held; the pointer itself is free.
#define NX_PT_GUARDED_BY(x) NX_THREAD_ANNOTATION(pt_guarded_by(x))

/// A lock that is taken before those named, where both are held.
#define NX_ACQUIRED_BEFORE(...) NX_THREAD_ANNOTATION(acquired_before(__VA_ARGS__))
/// A lock that is taken after those named, where both are held.
#define NX_ACQUIRED_AFTER(...) NX_THREAD_ANNOTATION(acquired_after(__VA_ARGS__))

/// The caller holds the locks, for writing.
#define NX_REQUIRES(...) NX_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The caller holds the locks at least for reading.
#define NX_REQUIRES_SHARED(...) NX_THREAD_ANNOTATION(requires_shared_capability(__VA_ARGS__))
/// The caller does not hold the locks.
#define NX_EXCLUDES(...) NX_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

/// The function takes the locks for writing; without an argument, the object itself.
#define NX_ACQUIRE(...) NX_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
/// The function takes the locks for reading; without an argument, the object itself.
#define NX_ACQUIRE_SHARED(...) NX_THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
/// The function gives the locks back; without an argument, the object itself.
#define NX_RELEASE(...) NX_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
/// The function gives back locks that are held for reading.
#define NX_RELEASE_SHARED(...) NX_THREAD_ANNOTATION(release_shared_capability(__VA_ARGS__))
/// The function gives the locks back, however they are held.
#define NX_RELEASE_GENERIC(...) NX_THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
/// The function takes the locks when it returns the first argument, a bool.
#define NX_TRY_ACQUIRE(...) NX_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))

/// After the call the analysis takes the lock for held for writing.
#define NX_ASSERT_CAPABILITY(...) NX_THREAD_ANNOTATION(assert_capability(__VA_ARGS__))
/// After the call the analysis takes the lock for held for reading.
#define NX_ASSERT_SHARED_CAPABILITY(...) NX_THREAD_ANNOTATION(assert_shared_capability(__VA_ARGS__))
/// The function returns a reference to the lock @p x.
#define NX_RETURN_CAPABILITY(x) NX_THREAD_ANNOTATION(lock_returned(x))
/// The body is not analysed, because what it does with locks cannot be put into these marks.
#define NX_NO_THREAD_SAFETY_ANALYSIS NX_THREAD_ANNOTATION(no_thread_safety_analysis)

#endif
