// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREADANNOTATIONS_H
#define CORE_THREAD_NXTHREADANNOTATIONS_H

/// @file
/// Marks with which clang proves at compile time that guarded data is used only under its lock (-Wthread-safety).
///
/// The library's locks and guards have these marks already. Mark your own data and functions:
/// @code
/// class Book
/// {
///     void _Sort() NX_REQUIRES(_lock);           // callers hold _lock
///     nxMutex _lock;
///     std::vector<Order> _orders NX_GUARDED_BY(_lock);
/// };
/// @endcode Every macro is empty for other compilers. The analysis does not see a lock taken by TryLock(), because it
/// cannot look into a returned error: call AssertHeld() in the branch that holds the lock.

#if defined(__clang__)
    #define NX_THREAD_ANNOTATION(x) __attribute__((x))
#else
    /// The attribute @p x where the compiler knows it, otherwise nothing. For the macros below.
    #define NX_THREAD_ANNOTATION(x)
#endif

/// A class whose objects are locks. @p x is its name in the compiler's messages.
#define NX_CAPABILITY(x) NX_THREAD_ANNOTATION(capability(x))
/// A class that locks in its constructor and unlocks in its destructor.
#define NX_SCOPED_CAPABILITY NX_THREAD_ANNOTATION(scoped_lockable)

/// Data that is used only while the lock is held.
#define NX_GUARDED_BY(x) NX_THREAD_ANNOTATION(guarded_by(x))
/// A pointer to data that is used only while the lock is held. The pointer itself needs no lock.
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
/// The function unlocks the locks; without an argument, the object itself.
#define NX_RELEASE(...) NX_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
/// The function unlocks locks that are held for reading.
#define NX_RELEASE_SHARED(...) NX_THREAD_ANNOTATION(release_shared_capability(__VA_ARGS__))
/// The function unlocks the locks, whether they are held for reading or for writing.
#define NX_RELEASE_GENERIC(...) NX_THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
/// The function takes the locks when it returns the first argument, a bool.
#define NX_TRY_ACQUIRE(...) NX_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))

/// After the call the analysis treats the lock as held for writing.
#define NX_ASSERT_CAPABILITY(...) NX_THREAD_ANNOTATION(assert_capability(__VA_ARGS__))
/// After the call the analysis treats the lock as held for reading.
#define NX_ASSERT_SHARED_CAPABILITY(...) NX_THREAD_ANNOTATION(assert_shared_capability(__VA_ARGS__))
/// The function returns a reference to the lock @p x.
#define NX_RETURN_CAPABILITY(x) NX_THREAD_ANNOTATION(lock_returned(x))
/// The body is not analysed, because these marks cannot express what it does with locks.
#define NX_NO_THREAD_SAFETY_ANALYSIS NX_THREAD_ANNOTATION(no_thread_safety_analysis)

#endif
