// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXFIELD_H
#define CORE_LOG_NXFIELD_H

#include <cstddef>
#include <string_view>

/// The name of a field: a literal of 1 to MaximumSize letters of ASCII, digits, '_', '-' and '.'. Anything else does not
/// compile.
class nxFieldName
{
public:
    static constexpr std::size_t MaximumSize = 64;  ///< Characters.

    /// @param name a literal.
    template <std::size_t size>
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is a name
    consteval nxFieldName(const char (&name)[size]) : _begin(name), _size(size - 1)
    {
        if (!_IsName())
            _HasOtherCharactersOrTooMany();
    }

    /// The name.
    constexpr std::string_view Get() const { return {_begin, _size}; }

private:
    static constexpr bool _IsBetween(char lowest, char value, char highest)
    {
        return lowest <= value && value <= highest;
    }
    static void
    _HasOtherCharactersOrTooMany();  // declared only: the name of a field has other characters than names have, or too many

    constexpr bool _IsName() const
    {
        for (const char c : Get())
            if (!_IsBetween('a', c, 'z') && !_IsBetween('A', c, 'Z') && !_IsBetween('0', c, '9') && c != '_' &&
                c != '-' && c != '.')
                return false;
        return 1 <= _size && _size <= MaximumSize;
    }

    const char* _begin;
    std::size_t _size;
};

/// Which lines show a field.
enum class nxFieldLines
{
    All,   ///< Lines of text as ` name=value`, lines of JSON as a member.
    Json,  ///< Lines of JSON only. Lines of text are as without the field.
};

/// A value with a name, to be streamed into a log record.
///
/// A line of text shows it as ` price=101.25`; a line of JSON as the member `"price":101.25` of its object. The value is one
/// that can be streamed into a record, of the library's types or of an application's own, but no character: a `char` is a
/// number, so give a text or an int.
///
/// - In JSON integers, decimals and doubles are numbers, truth values are true and false, null and no change are null, and
///   so is a double that is no finite number. All else is text.
/// - In text a value is in double quotes when it is empty, or holds anything but the visible characters of ASCII without
///   '=', '"' and '\'. Within the quotes '"' and '\' follow a backslash, and control bytes but tabs are `\xNN`.
/// - Names need not differ. The second field of a name is `name#2` in JSON, and so is the first one that is called as a member
///   of every line: see nxLogLineStyle::Json.
/// - Ownership: name and value are copied into the record, so that a plug-in that reports may be unloaded. The object itself
///   refers to the value and must not outlive the statement.
/// - Threads: no state.
/// @code
/// NX_LOG(NX_LOG_LEVEL_INFO) << "filled" << nxField("quantity", quantity) << nxField("price", price);
/// @endcode
template <class Value>
class nxField
{
public:
    /// @param name a literal: see nxFieldName. @param value lives until the statement ends.
    [[gnu::always_inline]] nxField(nxFieldName name, const Value& value, nxFieldLines lines = nxFieldLines::All)
        : _name(name), _value(value), _lines(lines)
    {
    }

    std::string_view GetName() const { return _name.Get(); }  ///< The name.
    const Value& GetValue() const { return _value; }          ///< The value.
    nxFieldLines GetLines() const { return _lines; }          ///< Which lines show it.

private:
    nxFieldName _name;
    const Value& _value;
    nxFieldLines _lines;
};

/// A field of any type of value.
template <class Value>
nxField(nxFieldName, const Value&) -> nxField<Value>;
/// A field of any type of value.
template <class Value>
nxField(nxFieldName, const Value&, nxFieldLines) -> nxField<Value>;

#endif
