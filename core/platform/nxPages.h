// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXPAGES_H
#define CORE_PLATFORM_NXPAGES_H

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

/// One object in memory straight from the system, for code that must not call the allocator.
///
/// - Null: there was no memory; ask the operator bool before anything else.
/// - Ownership: the object and its pages go with this one, except when they were released.
/// - Threads: like a std::unique_ptr.
template <class Content>
class nxPages
{
public:
    nxPages();  ///< A default-constructed object, or null.
    nxPages(const nxPages&) = delete;
    nxPages& operator=(const nxPages&) = delete;
    ~nxPages();

    explicit operator bool() const { return _content != nullptr; }
    Content* operator->() const { return _content; }
    Content& operator*() const { return *_content; }
    /// Hands the object over for the rest of the process's life; this one is null afterwards.
    Content* Release() { return std::exchange(_content, nullptr); }

private:
    Content* _content = nullptr;
};

/// The pages of nxPages.
class nxSystemPages
{
public:
    nxSystemPages() = delete;

    /// @return zeroed memory for @p size bytes at the start of a page, or null.
    static void* Take(std::size_t size) noexcept;
    /// Gives back memory that Take() returned for the same @p size.
    static void GiveBack(void* memory, std::size_t size) noexcept;
};

template <class Content>
nxPages<Content>::nxPages()
{
    if (void* const memory = nxSystemPages::Take(sizeof(Content)))
        _content = new (memory) Content;
}

template <class Content>
nxPages<Content>::~nxPages()
{
    static_assert(std::is_trivially_destructible_v<Content>, "only the memory is given back");
    if (_content != nullptr)
        nxSystemPages::GiveBack(_content, sizeof(Content));
}

#endif
