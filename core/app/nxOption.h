// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXOPTION_H
#define CORE_APP_NXOPTION_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/app/inline/nxOptionType.h"
#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// One declared option, whatever its type. nxOptions::Add() makes it and returns it as an nxTypedOption.
class NX_CORE_API nxOption
{
public:
    virtual ~nxOption();
    nxOption(const nxOption&) = delete;
    nxOption& operator=(const nxOption&) = delete;

    const std::string& GetName() const { return _texts.name; }  ///< Without its dash.

protected:
    /// What the help and the messages say about an option.
    struct Texts
    {
        std::string name;                ///< Without its dash.
        std::string label;               ///< Stands for the value; empty for a flag.
        std::string meaning;             ///< One line for the help.
        std::string defaultValue;        ///< Empty when there is none.
        std::vector<std::string> words;  ///< The possible values, where they are few.
    };

    /// Takes over the texts.
    explicit nxOption(Texts texts);

    /// The option must be given.
    void _Require() { _isRequired = true; }
    /// The variable that gives the value when the command line does not.
    void _SetKey(std::string_view key) { _key = key; }
    /// Adds a condition to the help.
    void _AddCondition(std::string_view wording) { _conditions.emplace_back(wording); }

    /// What stands for the value in the help.
    const std::string& _GetLabel() const { return _texts.label; }

    /// Reads and keeps a value; @p wanted gets a description of what the text should be when it is refused.
    virtual nxErrorEnum _Read(const std::string& text, std::string& wanted) = 0;
    /// Stores what was read in the program's variable if @p isAccepted, and forgets it.
    virtual void _Finish(bool isAccepted) = 0;

private:
    friend class nxOptions;

    bool _IsFlag() const { return _texts.label.empty(); }
    std::string _GetUse() const;
    std::string _GetHelp() const;
    nxErrorEnum _Check(const std::string& text, const std::string& source, std::vector<std::string>& messages);

    Texts _texts;
    std::vector<std::string> _conditions;
    std::string _key;
    bool _isRequired = false;
};

/// An option that may be given several times. nxOptions::Add() makes it for a vector.
class NX_CORE_API nxRepeatedOption : public nxOption
{
public:
    ~nxRepeatedOption() override;

protected:
    using nxOption::nxOption;
};

/// One declared option with a variable of type Value. Its operations return the option itself, so that they can be chained:
/// @code
/// options.Add("lots", lots, "N", "size of each quote").Between(1, 1000).Required();
/// @endcode
///
/// - Errors: none; nxOptions::Read() reports what is not met.
/// - Threads: one at a time. Ownership: nxOptions owns the option; the variable is the program's and must outlive Read().
template <class Value>
class nxTypedOption final : public nxOption
{
    using Type = nxOptionType<Value>;

public:
    /// The option must be given, on the command line or by its variable of the environment.
    nxTypedOption& Required()
    {
        _Require();
        return *this;
    }

    /// Takes the value from a variable of the environment when the command line does not give it. An empty variable
    /// counts as not set.
    /// @param key the variable's name; a constant of nxConfigurationKeys.h cannot be misspelt.
    nxTypedOption& FromEnvironment(std::string_view key)
    {
        _SetKey(key);
        return *this;
    }

    /// Accepts the values from @p lowest to @p highest, both included. Declare it once.
    nxTypedOption& Between(const Value& lowest, const Value& highest)
    {
        _range = " from " + Type::GetText(lowest) + " to " + Type::GetText(highest);
        _AddCondition(std::string_view(_range).substr(1));
        _conditions.emplace_back([lowest, highest](const Value& value)
                                 { return !_IsLess(value, lowest) && !_IsLess(highest, value); },
                                 std::string_view(_range).substr(1));
        return *this;
    }

    /// Accepts the values that meet a condition.
    /// @param condition must not throw.
    /// @param wording completes the sentence "the value is not ...": "a positive number".
    nxTypedOption& Where(std::function<bool(const Value&)> condition, std::string_view wording)
    {
        _conditions.emplace_back(std::move(condition), wording);
        _AddCondition(wording);
        return *this;
    }

private:
    friend class nxOptions;
    friend class nxTypedOption<std::vector<Value>>;

    nxTypedOption(std::string_view name, Value& target, std::string_view label, std::string_view meaning)
        : nxOption(Texts{std::string(name), std::string(label), std::string(meaning), Type::GetText(target),
                         Type::GetWords()}),
          _target(&target)
    {
    }

    static bool _IsLess(const Value& left, const Value& right)
    {
        if constexpr (requires { left.CompareExact(right); })
            return left.CompareExact(right) < 0;
        else
            return left < right;
    }

    std::string _GetWanted() const
    {
        std::string kind = Type::GetKind();
        return (kind.empty() ? _GetLabel() : kind) + _range;
    }

    nxErrorEnum _Read(const std::string& text, std::string& wanted) override
    {
        Value value = *_target;
        if (const nxErrorEnum error = Type::Read(text, value); !error.IsOK())
        {
            wanted = _GetWanted();
            return error;
        }
        for (const auto& [holds, wording] : _conditions)
            if (!holds(value))
            {
                wanted = wording;
                return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
            }
        _value = std::move(value);
        return nxErrorEnum();
    }

    void _Finish(bool isAccepted) override
    {
        if (isAccepted && _value.has_value())
            *_target = std::move(*_value);
        _value.reset();
    }

    Value* _target;
    std::optional<Value> _value;
    std::string _range = Type::GetRange();
    std::vector<std::pair<std::function<bool(const Value&)>, std::string>> _conditions;
};

/// An option with a vector, which receives a value for each time that the option is given, in their order:
/// `-symbol WTI -symbol BRN`. Its operations are those of an option with a single value and concern each value.
///
/// - Environment: the variable gives one value.
/// - Default: the vector keeps what it holds if no value is given. The help does not show it.
/// - Errors, threads, ownership: as for other options.
template <class Element>
class nxTypedOption<std::vector<Element>> final : public nxRepeatedOption
{
    using Type = nxOptionType<Element>;

public:
    /// The option must be given at least once, or by its variable of the environment.
    nxTypedOption& Required()
    {
        _Require();
        return *this;
    }

    /// Takes one value from a variable of the environment when the command line gives none.
    /// @param key the variable's name.
    nxTypedOption& FromEnvironment(std::string_view key)
    {
        _SetKey(key);
        return *this;
    }

    /// Accepts the values from @p lowest to @p highest, both included. Declare it once.
    nxTypedOption& Between(const Element& lowest, const Element& highest)
    {
        _reader.Between(lowest, highest);
        _AddCondition("from " + Type::GetText(lowest) + " to " + Type::GetText(highest));
        return *this;
    }

    /// Accepts the values that meet a condition.
    /// @param condition must not throw.
    /// @param wording completes the sentence "the value is not ...": "a positive number".
    nxTypedOption& Where(std::function<bool(const Element&)> condition, std::string_view wording)
    {
        _reader.Where(std::move(condition), wording);
        _AddCondition(wording);
        return *this;
    }

private:
    friend class nxOptions;

    nxTypedOption(std::string_view name, std::vector<Element>& target, std::string_view label, std::string_view meaning)
        : nxRepeatedOption(Texts{std::string(name), std::string(label), std::string(meaning), {}, Type::GetWords()}),
          _target(&target),
          _reader(name, _element, label, meaning)
    {
    }

    nxErrorEnum _Read(const std::string& text, std::string& wanted) override
    {
        const nxErrorEnum error = _reader._Read(text, wanted);
        _reader._Finish(error.IsOK());
        if (error.IsOK())
            _values.push_back(_element);
        return error;
    }

    void _Finish(bool isAccepted) override
    {
        if (isAccepted && !_values.empty())
            *_target = std::move(_values);
        _values.clear();
    }

    std::vector<Element>* _target;
    std::vector<Element> _values;
    Element _element{};
    nxTypedOption<Element> _reader;  // of one value, which it stores in _element
};

#endif
