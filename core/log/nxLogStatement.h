// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGSTATEMENT_H
#define CORE_LOG_NXLOGSTATEMENT_H

#include <concepts>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/inline/nxLogChannel.h"
#include "core/log/inline/nxLogSource.h"
#include "core/log/inline/nxLogStream.h"
#include "core/log/nxLog.h"

/// One statement of NX_LOG: begins a record, takes what is streamed straight into the calling thread's ring and hands
/// it over when the statement ends, also when an argument throws. Use the macros of nxLogMacros.h.
///
/// The object must not outlive its statement, and the statement must hold no co_await, because the ring belongs to the
/// thread.
class nxLogStatement : public nxLogStream<nxLogStatement>
{
public:
    /// Begins a record of @p level at @p site.
    [[gnu::always_inline]] nxLogStatement(nxEnumValue level, nxLogSite& site) noexcept
        : _level(level), _room(nxLogChannel::Open(site.GetSource()))
    {
    }
    /// @copydoc nxLogStatement(nxEnumValue, nxLogSite&)
    [[gnu::always_inline]] nxLogStatement(const nxLogLevelEnum& level, nxLogSite& site) noexcept
        : nxLogStatement(level.GetEnumValue(), site)
    {
    }
    /// Hands the record over.
    [[gnu::always_inline]] ~nxLogStatement() { nxLogChannel::Close(_room, _level); }
    nxLogStatement(const nxLogStatement&) = delete;
    nxLogStatement& operator=(const nxLogStatement&) = delete;

    using nxLogStream::operator<<;
    /// The character's number: 'a' is 97.
    [[deprecated("a char is logged as its number: stream a text, or the number as an int")]] nxLogStatement& operator<<(
        char value)
    {
        return *this << static_cast<int>(value);
    }

    /// What a value becomes that has no text in the log; it does not compile, and the compiler says so in few lines. The
    /// conversion ranks below all others, so that it takes no value from another operator.
    struct Textless
    {
        /// Reports the type.
        template <class Value>
        requires(!nxLogStreams<Value, nxLogStatement> && !nxLogsItself<Value> && !nxMisprinted<Value>)
            Textless(const Value&)
        {
            static_assert(sizeof(Value*) == 0,
                          "this type has no text in the log: declare nxLog& operator<<(nxLog&, const Type&) beside it");
        }
    };
    /// Does not compile: see Textless.
    nxLogStatement& operator<<(Textless) { return *this; }

    /// The statement as an lvalue, so that << can be applied to a temporary.
    nxLogStatement& Stream() { return *this; }

    /// Appends the values of @p record; its other properties do not count.
    NX_CORE_API void AppendValuesOf(const nxLog& record) noexcept;

    /// The number of a level, constant where the level is a constant.
    static constexpr unsigned GetNumber(nxEnumValue level) { return level; }
    /// Declared only: what an object holds is never a constant.
    static unsigned GetNumber(const nxLogLevelEnum& level);

    /// Turns the streaming expression into one of type void.
    /// @tparam Level the level where it is a constant, else any level.
    template <unsigned Level>
    struct End
    {
        static_assert(nxLogLevelEnum::MinimumValue < Level && Level < nxLogLevelEnum::MaximumValue,
                      "this constant is no log level");
        /// Binds less tightly than << and more tightly than ?:.
        void operator&(const nxLogStatement&) const {}
    };

private:
    friend class nxLogStream<nxLogStatement>;

    // Room for `bytes` bytes of the record; null when there is no memory.
    [[gnu::always_inline]] char* _Take(std::size_t bytes)
    {
        if (static_cast<std::size_t>(_room.end - _room.cursor) < bytes) [[unlikely]]
        {
            _room = nxLogChannel::Grow(_room, bytes);
            if (static_cast<std::size_t>(_room.end - _room.cursor) < bytes)
                return nullptr;
        }
        char* const at = _room.cursor;
        // A room that is large enough has a place: this spares the callers' test for null.
        if (at == nullptr)
            __builtin_unreachable();
        _room.cursor += bytes;
        return at;
    }

    // A field's value of an application's own type.
    template <class Value>
    nxLogStatement& _PutGroup(const Value& value)
    {
        nxLog record{nxLogLevelEnum(), nullptr, 0, nxTimeStamp(0, 0)};
        record << value;
        _PutGroupOf(record);
        return *this;
    }
    NX_CORE_API void _PutGroupOf(const nxLog& record) noexcept;

    nxEnumValue _level;
    nxLogRoom _room;
};

/// Values of an application's own types, by their `nxLog& operator<<(nxLog&, const Value&)`.
template <class Statement, class Value>
requires(std::same_as<Statement, nxLogStatement> && !nxLogStreams<Value, Statement> && nxLogsItself<Value>) Statement&
operator<<(Statement& statement, const Value& value)
{
    nxLog record{nxLogLevelEnum(), nullptr, 0, nxTimeStamp(0, 0)};
    record << value;
    statement.AppendValuesOf(record);
    return statement;
}

#endif
