// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXSTRINGVALUE_H
#define CORE_TEXT_NXSTRINGVALUE_H

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// A text that can also be null (no value) or no change (keep what the receiver holds).
///
/// - Null: a default-constructed value is null, which differs from the empty text. In plain form null and no change are
///   empty, in log form "NULL" and "NO_CHANGE".
/// - Errors: none of its own; reading always succeeds. A null pointer counts as an empty text.
/// - Threads: like a string. Ownership: it owns its text.
/// @code
/// nxStringValue account;                           // null
/// account = nxStringValue("A-1");
/// account.GetAsLogString();                        // "A-1"
/// nxStringValue::GetNullInstance().GetAsLogString();  // "NULL"
/// @endcode
class NX_CORE_API nxStringValue
{
public:
    nxStringValue() : _status(NX_VALUE_STATUS_NULL) {}                                    ///< Null.
    explicit nxStringValue(nxNullInitalizer) : _status(NX_VALUE_STATUS_NULL) {}           ///< Null.
    explicit nxStringValue(nxNoChangeInitalizer) : _status(NX_VALUE_STATUS_NO_CHANGE) {}  ///< No change.
    /// A value; empty for a null pointer.
    nxStringValue(const char* text) : _text(text != nullptr ? text : ""), _status(NX_VALUE_STATUS_VALID) {}
    /// A value.
    nxStringValue(const std::string& text) : _text(text), _status(NX_VALUE_STATUS_VALID) {}

    /// @return a constant that lives as long as the process.
    static const nxStringValue& GetNullInstance();
    /// @return a constant that lives as long as the process.
    static const nxStringValue& GetNoChangeInstance();

    void SetNull();                                                  ///< Becomes null; the text is forgotten.
    void SetNoChange();                                              ///< Becomes no change; the text is forgotten.
    bool IsNull() const { return _status == NX_VALUE_STATUS_NULL; }  ///< There is no text.
    bool IsNoChange() const { return _status == NX_VALUE_STATUS_NO_CHANGE; }  ///< The receiver keeps its text.
    bool IsValid() const { return _status == NX_VALUE_STATUS_VALID; }         ///< There is a text, maybe an empty one.

    /// @return the text when there is one, maybe an empty one, else @p fallback.
    std::string GetValueOr(const std::string& fallback) const { return IsValid() ? _text : fallback; }
    /// Takes over the null or the text of an update request; a no-change request changes nothing.
    void UpdateFrom(const nxStringValue& request)
    {
        if (!request.IsNoChange())
            *this = request;
    }

    /// Takes the text as the value; always succeeds.
    nxErrorEnum SetFromString(const std::string& text);
    /// Takes the text as the value, an empty one for a null pointer; always succeeds.
    nxErrorEnum SetFromString(const char* text);

    /// Appends the text when there is a value, else nothing.
    void AppendAsString(std::string& out) const;
    /// Replaces @p out by the text, or empties it when there is no value.
    void GetAsString(std::string& out) const;
    std::string GetAsString() const { return _text; }  ///< @return the text; empty when there is no value.
    /// Appends the text, "NULL" or "NO_CHANGE".
    void AppendAsLogString(std::string& out) const;
    /// Replaces @p out by the text, "NULL" or "NO_CHANGE".
    void GetAsLogString(std::string& out) const;
    /// @return the text, "NULL" or "NO_CHANGE".
    std::string GetAsLogString() const;

    /// Null equals null and no change equals no change; neither equals any text.
    friend bool operator==(const nxStringValue& a, const nxStringValue& b)
    {
        return a._status == b._status && a._text == b._text;
    }
    /// Null comes first, no change next, then the texts, byte by byte. Agrees with `==`.
    friend std::strong_ordering operator<=>(const nxStringValue& a, const nxStringValue& b)
    {
        const auto rank = [](const nxStringValue& value) { return value.IsNull() ? 0 : value.IsNoChange() ? 1 : 2; };
        const std::strong_ordering order = rank(a) <=> rank(b);
        return order != 0 ? order : a._text.compare(b._text) <=> 0;
    }

private:
    std::string _text;  // empty unless there is a value
    nxValueStatusEnum _status;
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxStringValue& value);

/// Agrees with `==`.
template <>
struct std::hash<nxStringValue>
{
    /// Null, no change and the texts that spell their log forms share hashes, which `==` tells apart.
    std::size_t operator()(const nxStringValue& value) const
    {
        return std::hash<std::string>()(value.GetAsLogString());
    }
};

#endif
