// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INLINE_NXFUNCTORACTIONS_H
#define CORE_THREAD_INLINE_NXFUNCTORACTIONS_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "core/enum/nxErrorEnum.h"

/// What can be posted to an nxFunctorQueue: anything that can be moved and called without arguments. Its result is ignored.
template <class F>
concept nxFunctor = std::is_move_constructible_v<std::decay_t<F>> && std::is_constructible_v<std::decay_t<F>, F> &&
                    std::is_invocable_v < std::decay_t<F>
& > ;

/// What the queue does with a functor whose type only the caller of Post() knows.
struct nxFunctorActions
{
    /// The bytes in the queue for one functor. A larger one is on the heap, and its address is in the queue.
    static constexpr std::size_t PlaceBytes = 48;

    /// Whether make() only copies bytes. It then calls no function of the functor, and may be called under a lock.
    bool isPlain;
    /// Makes a functor at a place from the one at the second address. @return whether there was memory for it. Throws what a
    /// constructor of the functor throws.
    bool (*make)(void* place, void* functor);
    void (*run)(void* place);      ///< Throws what the functor throws.
    void (*destroy)(void* place);  ///< Throws what the destructor throws. Null when there is nothing to do.
};

/// The actions of what is posted as an F, which may be a reference.
template <class F>
class nxFunctorActionsOf
{
    using Functor = std::decay_t<F>;
    using Source = std::remove_reference_t<F>;
    static constexpr bool _isInPlace =
        sizeof(Functor) <= nxFunctorActions::PlaceBytes && alignof(Functor) <= alignof(std::max_align_t);
    static constexpr bool _isPlain = _isInPlace && std::is_trivially_copyable_v<Functor>;

    static Functor& _Get(void* place)
    {
        if constexpr (_isInPlace)
            return *std::launder(static_cast<Functor*>(place));
        else
            return **static_cast<Functor**>(place);
    }
    static bool _Make(void* place, void* functor)
    {
        if constexpr (_isPlain)
        {
            std::memcpy(place, functor, sizeof(Functor));
            return true;
        }
        else if constexpr (_isInPlace)
        {
            ::new (place) Functor(std::forward<F>(*static_cast<Source*>(functor)));
            return true;
        }
        else
        {
            Functor* const made = ::new (std::nothrow) Functor(std::forward<F>(*static_cast<Source*>(functor)));
            ::new (place) Functor*(made);
            return made != nullptr;
        }
    }
    static void _Run(void* place) { static_cast<void>(_Get(place)()); }
    static void _Destroy(void* place)
    {
        if constexpr (_isInPlace)
            _Get(place).~Functor();
        else
            ::delete &_Get(place);
    }

public:
    static constexpr nxFunctorActions Value{_isPlain, &_Make, &_Run, _isPlain ? nullptr : &_Destroy};

    /// The address that make() takes.
    static void* GetAddress(Source& functor)
    {
        return const_cast<void*>(static_cast<const volatile void*>(std::addressof(functor)));
    }

    /// Whether it is a function pointer that is null or a wrapper of functions that is empty.
    static bool IsEmpty(const Source& functor)
    {
        if constexpr (std::is_pointer_v<Functor>)
            return functor == nullptr;
        else if constexpr (
            requires { functor.operator bool(); } && requires { functor == nullptr; })
            return functor == nullptr;
        else
            return false;
    }
};

/// Calls @p post with the address of a functor and its actions. @return what @p post returns; NX_ERR_INVALID_PARAMETER for a
/// null function.
template <class F, class Post>
nxErrorEnum nxPostFunctor(F&& functor, Post post)
{
    if constexpr (std::is_function_v<std::remove_reference_t<F>>)
        return nxPostFunctor(std::decay_t<F>(functor), post);
    else
    {
        using Actions = nxFunctorActionsOf<F>;
        if (Actions::IsEmpty(functor))
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        return post(Actions::GetAddress(functor), Actions::Value);
    }
}

#endif
