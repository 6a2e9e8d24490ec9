// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxOptions.h"

#include <algorithm>
#include <set>

#include "core/app/internal/nxOptionHelp.h"
#include "core/app/internal/nxOptionWord.h"
#include "core/text/nxPrintableText.h"

namespace
{
bool IsHelpName(std::string_view name) { return name == "help" || name == "-help"; }

std::string DashedName(std::string_view name)
{
    std::string dashed = "-";
    return dashed += name;
}

// Whether an option can have this name: a word of digits may be the value of another option.
bool IsOptionName(std::string_view name)
{
    return !name.empty() && !IsHelpName(name) && nxIsOptionWord(DashedName(name).c_str(), true);
}
}  // namespace

// The words of a command line, told apart.
struct nxOptions::Words
{
    // What was given for an option: each time for one that is repeated, the last time for others.
    struct Value
    {
        std::size_t times = 0;
        std::vector<std::string> texts;  // fewer when a value is missing

        bool IsComplete() const { return texts.size() == times; }
    };
    std::map<const nxOption*, Value> values;

    // The option is here once more, perhaps with a value after it.
    void Begin(const nxOption& option)
    {
        Value& value = values[&option];
        if (dynamic_cast<const nxRepeatedOption*>(&option) == nullptr)
            value = {};
        ++value.times;
    }

    std::vector<std::string> unknownOptions;
    std::vector<std::string> others;
    bool hasHelp = false;
};

nxOptions::nxOptions(std::string_view purpose) : _purpose(purpose), _program("program") {}

nxOptions::~nxOptions() = default;

nxTypedOption<bool>& nxOptions::Add(std::string_view name, bool& target, std::string_view meaning)
{
    std::unique_ptr<nxTypedOption<bool>> option(new nxTypedOption<bool>(name, target, "", meaning));
    nxTypedOption<bool>& added = *option;
    _Add(std::move(option));
    return added;
}

void nxOptions::_Add(std::unique_ptr<nxOption> option)
{
    const std::string name = option->GetName();
    const bool isName = IsOptionName(name);
    // A refused option is kept, because the caller may still refer to it. try_emplace() leaves it alone.
    if (isName && _options.try_emplace(name, std::move(option)).second)
        return;
    _declarationFaults.push_back("option " + nxPrintableText::GetQuoted(DashedName(name)) +
                                 (isName ? " is declared twice" : " cannot have this name"));
    _refused.push_back(std::move(option));
}

void nxOptions::AddWords(std::vector<std::string>& target, std::string_view label, std::string_view meaning)
{
    _words = &target;
    _wordsLabel = label;
    _wordsMeaning = meaning;
}

nxOption* nxOptions::_Find(std::string_view name) const
{
    const auto found = _options.find(name);
    return found == _options.end() ? nullptr : found->second.get();
}

nxOptions::Words nxOptions::_Split(const char* const* argv) const
{
    Words words;
    const nxOption* pending = nullptr;
    bool isValueAwaited = false;  // also by an unknown option
    for (argv += *argv != nullptr; *argv != nullptr; ++argv)
    {
        const char* const word = *argv;
        const bool isAwaited = std::exchange(isValueAwaited, false);
        if (nxIsOptionWord(word, isAwaited))
        {
            pending = _Find(word + 1);
            isValueAwaited = true;
            if (IsHelpName(word + 1))
                words.hasHelp = true;
            else if (pending != nullptr)
                words.Begin(*pending);
            else
                words.unknownOptions.emplace_back(word);
            continue;
        }
        bool flag = false;
        const bool isFree =
            !isAwaited || (pending != nullptr && pending->_IsFlag() && !nxOptionReader::ReadFlag(word, flag).IsOK());
        if (isFree)
            words.others.emplace_back(word);
        else if (pending != nullptr)
            words.values[pending].texts.emplace_back(word);
    }
    return words;
}

std::string nxOptions::_GetUnknownText(std::string_view word) const
{
    std::set<std::string> known = {"-help"};
    for (const auto& [name, option] : _options)
        known.insert(DashedName(name));
    // Other programs take a value after an equals sign.
    const std::string name(word.substr(0, word.find('=')));
    return "unknown option " + nxPrintableText::GetQuoted(word) + nxOptionHelp::GetSuggestion(name, known);
}

void nxOptions::_CheckUnknown(const Words& words)
{
    for (const std::string& word : words.unknownOptions)
        _messages.push_back(_GetUnknownText(word));
    if (_words == nullptr)
        for (const std::string& word : words.others)
            _messages.push_back(nxPrintableText::GetQuoted(word) + " belongs to no option");
}

// Returns the error of the first value that is refused.
nxErrorEnum nxOptions::_CheckValues(const Words& words, const nxCmdLineArgs& args)
{
    nxErrorEnum first;
    const auto keep = [&first](const nxErrorEnum& error)
    {
        if (first.IsOK())
            first = error;
    };
    for (const auto& [name, option] : _options)
    {
        const auto found = words.values.find(option.get());
        const std::string variable = option->_key.empty() ? std::string() : args.GetEnvValue(option->_key);
        if (found != words.values.end() && found->second.IsComplete())
            for (const std::string& text : found->second.texts)
                keep(option->_Check(text, DashedName(name), _messages));
        else if (found != words.values.end() && option->_IsFlag())
            keep(option->_Check("YES", DashedName(name), _messages));
        else if (found != words.values.end())
        {
            _messages.push_back(DashedName(name) + " needs a value, " + option->_texts.label);
            keep(nxErrorEnum(NX_ERR_INVALID_PARAMETER));
        }
        else if (!variable.empty())
            keep(option->_Check(variable, option->_key, _messages));
        else if (option->_isRequired)
        {
            _messages.push_back(option->_GetUse() + " is missing");
            keep(nxErrorEnum(NX_ERR_INVALID_PARAMETER));
        }
    }
    return first;
}

nxErrorEnum nxOptions::Read(const nxCmdLineArgs& args)
{
    _messages = _declarationFaults;
    _isHelpWanted = false;
    const char* const* const argv = args.GetRawArgv();
    if (argv == nullptr)
    {
        _messages.emplace_back("the command line has not been read");
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    }
    const std::string& command = args.GetCommand();
    if (const std::string program = command.substr(command.rfind('/') + 1); !program.empty())
        _program = nxPrintableText::GetEscaped(program);
    Words words = _Split(argv);
    if (!_messages.empty())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (words.hasHelp)
    {
        _isHelpWanted = true;
        return nxErrorEnum();
    }

    _CheckUnknown(words);
    const bool isUnknown = !_messages.empty();
    const nxErrorEnum valueError = _CheckValues(words, args);
    for (const auto& [name, option] : _options)
        option->_Finish(_messages.empty());
    if (_messages.empty() && _words != nullptr)
        *_words = std::move(words.others);
    return isUnknown ? nxErrorEnum(NX_ERR_INVALID_PARAMETER) : valueError;
}

std::string nxOptions::GetErrorText() const
{
    std::string text;
    for (const std::string& message : _messages)
        text.append(_program).append(": ").append(message).append("\n");
    return text.empty() ? text : text.append(_program).append(": -help shows all options\n");
}

std::string nxOptions::GetHelp() const
{
    std::vector<std::string> use = {"usage:", _program};
    std::vector<nxOptionHelp::Row> rows = {{"-help", "shows this text"}};
    for (const auto& [name, option] : _options)
    {
        const std::string optionUse = option->_GetUse();
        use.push_back(option->_isRequired ? optionUse : "[" + optionUse + "]");
        rows.emplace_back(optionUse, option->_GetHelp());
    }
    std::sort(rows.begin(), rows.end());
    if (_words != nullptr)
    {
        use.push_back("[" + _wordsLabel + "]");
        rows.emplace(rows.begin(), _wordsLabel, _wordsMeaning);
    }
    return nxOptionHelp::GetText(use, _purpose, rows);
}
