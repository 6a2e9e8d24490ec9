// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFORKHANDLERS_H
#define CORE_PLATFORM_NXFORKHANDLERS_H

#include <array>
#include <atomic>
#include <cstddef>

/// The functions that the library has called around every fork of the process, in the order of their ranks.
///
/// A fork takes the library's locks in this order. A thread that holds two of them has therefore taken them in the same
/// order: otherwise a fork and that thread would wait for each other.
///
/// Threads: any. A function that is registered while another thread forks is called for that fork completely or not at
/// all.
class nxForkHandlers
{
public:
    /// In the order in which a fork takes the locks. It gives them back, and repairs the child, in the reverse order.
    enum class Rank
    {
        /// The table of named objects. First, because another thread may hold it for the time of several system calls, and
        /// the fork keeps no other lock while it waits for that one.
        NamedObjects,
        /// The locks of the log's devices, of its lists and of its queue. Before the settings, because a device may ask
        /// for one in the middle of a line. A thread that holds a lock of a later rank does not wait for the log.
        Log,
        /// The command line and the copy of the environment.
        CommandLine,
        /// The other data of the application, which are asked for on their own.
        ApplicationData,
        /// The application's name, which the log's devices ask for as well.
        ApplicationName,
        /// The lock of the C library's local time, which a thread holds for one call. The child also drops the turn of a
        /// thread that was looking for the zone.
        LocalZone,
        /// The lock under which texts of enumerations and masks are registered. A thread that holds it takes no other.
        Registries,
        /// No lock: the child can use no functor queue of its parent.
        FunctorQueues,
        /// No lock: the child drops the update of a thread that was reading the clocks. Last, so that the child repairs
        /// it first: the functions of all other ranks may ask for the time.
        Clock
    };
    static constexpr std::size_t RankCount = static_cast<std::size_t>(Rank::Clock) + 1;

    /// What is called; each may be null.
    struct Functions
    {
        void (*before)();         ///< In the thread that forks.
        void (*afterInParent)();  ///< In that thread, whether or not there is a child.
        void (*afterInChild)();   ///< In the child's only thread.
    };

    /// Has the functions called around every fork from now on. They cannot be taken back, and another call for the same
    /// rank replaces them.
    /// @param functions live as long as the process.
    /// @return whether the system accepted; otherwise forks go on without them.
    static bool Register(Rank rank, const Functions& functions) noexcept;

    /// The functions by rank. The library has one; a test may have its own.
    class Table
    {
    public:
        constexpr Table() = default;

        void Set(Rank rank, const Functions& functions) noexcept
        {
            _functions[static_cast<std::size_t>(rank)].store(&functions, std::memory_order_release);
        }

        /// Calls the functions for before the fork in the order of the ranks.
        /// @return the ranks that take part in this fork, a bit for each.
        unsigned RunBefore() const
        {
            unsigned ranks = 0;
            for (std::size_t rank = 0; rank < RankCount; ++rank)
            {
                const Functions* const functions = _functions[rank].load(std::memory_order_acquire);
                if (functions == nullptr)
                    continue;
                ranks |= 1U << rank;
                _Call(functions->before);
            }
            return ranks;
        }

        /// Calls the functions for after the fork in the reverse order. @param ranks what RunBefore() has returned.
        void RunInParent(unsigned ranks) const { _RunAfter(ranks, &Functions::afterInParent); }
        void RunInChild(unsigned ranks) const { _RunAfter(ranks, &Functions::afterInChild); }

    private:
        static void _Call(void (*function)())
        {
            if (function != nullptr)
                function();
        }

        void _RunAfter(unsigned ranks, void (*Functions::*after)()) const
        {
            for (std::size_t rank = RankCount; rank-- > 0;)
                if ((ranks >> rank & 1U) != 0)
                    _Call(_functions[rank].load(std::memory_order_acquire)->*after);
        }

        // Set() stores a set of functions that is complete (release), a fork loads it (acquire).
        std::array<std::atomic<const Functions*>, RankCount> _functions{};
    };
};

#endif
