// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXOPTIONS_H
#define CORE_APP_NXOPTIONS_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxOption.h"
#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// The options of a program, declared once: from the declarations come the checked values, the help and the messages.
///
/// Each option is declared with the variable that receives its value. The type of the variable is the type of the option,
/// and what the variable holds at that time is the default, which is not checked. These types are known: `bool` for a
/// flag, the integers, `double`, nxDecimal, nxValueWrapper, nxDoubleValueWrapper, `std::string`, the enumerations by
/// their identifiers, and `std::chrono` durations ("250ms"); also a `std::vector` of these, but for flags. Every other type needs a member
/// `nxErrorEnum SetFromString(const std::string&)`, as dates, times and nxStringValue have.
///
/// The command line is read as nxCmdLineArgs reads it: `-name value`, where a negative number is a value and any other word
/// with a dash is an option; the last value of a repeated option counts, and all of them if the variable is a vector. Two rules differ, because the options are known. A
/// flag takes no value but TRUE, YES, FALSE or NO; any other word after it is a word of its own. A word that belongs to no
/// option is an error where the program has not declared words. `-help` and `--help` are always known.
///
/// - Exact: a text that is not wholly a value of the type, or does not fit, is an error. Nothing wraps or is cut.
/// - Whole or not at all: Read() reports every error it finds, and with any error no variable changes.
/// - Threads: one at a time; usually main, before other threads start.
/// - Ownership: owns the declarations. The variables are the program's and must outlive Read().
/// @code
/// unsigned lots = 1;
/// nxDecimal price;
/// nxOptions options("Quotes one symbol.");
/// options.Add("lots", lots, "N", "size of each quote").Between(1, 1000);
/// options.Add("price", price, "P", "price of the quote").Required();
/// if (!options.Read().IsOK())
/// {
///     std::cerr << options.GetErrorText();  // prog: -lots 'ten' is not a whole number from 0 to 4294967295
///     return 2;
/// }
/// if (options.IsHelpWanted())
/// {
///     std::cout << options.GetHelp();
///     return 0;
/// }
/// @endcode
class NX_CORE_API nxOptions
{
public:
    /// @param purpose what the program does, in a sentence or two, for the help.
    explicit nxOptions(std::string_view purpose);
    ~nxOptions();
    nxOptions(const nxOptions&) = delete;
    nxOptions& operator=(const nxOptions&) = delete;

    /// Declares an option with a value.
    /// @param name without its dash; neither empty nor a number.
    /// @param target receives the value and holds the default.
    /// @param label stands for the value in the help: "N", "PRICE".
    /// @param meaning what the option means, in one line.
    /// @return the option, to say more about it.
    template <nxOptionWithLabel Value>
    nxTypedOption<Value>& Add(std::string_view name, Value& target, std::string_view label, std::string_view meaning)
    {
        std::unique_ptr<nxTypedOption<Value>> option(
            new nxTypedOption<Value>(name, target, label.empty() ? "VALUE" : label, meaning));
        nxTypedOption<Value>& added = *option;
        _Add(std::move(option));
        return added;
    }

    /// Declares an option that may be given several times: `-symbol WTI -symbol BRN`.
    /// @param target receives the values in their order, in place of what it holds. What it holds is the default.
    template <nxOptionWithLabel Value>
    nxTypedOption<std::vector<Value>>& Add(std::string_view name, std::vector<Value>& target, std::string_view label,
                                           std::string_view meaning)
    {
        std::unique_ptr<nxTypedOption<std::vector<Value>>> option(
            new nxTypedOption<std::vector<Value>>(name, target, label.empty() ? "VALUE" : label, meaning));
        nxTypedOption<std::vector<Value>>& added = *option;
        _Add(std::move(option));
        return added;
    }

    /// Does not compile, and says what the type lacks.
    template <class Value>
    requires(!nxOptionValue<Value>) void Add(std::string_view, Value&, std::string_view, std::string_view)
    {
        static_assert(sizeof(Value*) == 0,
                      "an option of this type needs a member: nxErrorEnum SetFromString(const std::string& text)");
    }

    /// Declares a flag, an option that is on when it is given.
    nxTypedOption<bool>& Add(std::string_view name, bool& target, std::string_view meaning);

    /// Declares the words that belong to no option, files for example.
    /// @param target receives them in their order; it is emptied when there are none.
    /// @param label stands for them in the help: "FILE...".
    /// @param meaning what they mean, in one line.
    void AddWords(std::vector<std::string>& target, std::string_view label, std::string_view meaning);

    /// Reads the command line, checks it and sets the variables. With `-help` among the words nothing is checked or set.
    /// @return the error of the first message: NX_ERR_VALUE_OUT_OF_RANGE for a value that does not fit or does not meet its
    ///         condition, NX_ERR_INVALID_PARAMETER for everything else that is wrong on the command line or in a
    ///         declaration, NX_ERR_NOT_INITIALISED when @p args has not read a command line.
    [[nodiscard]] nxErrorEnum Read(const nxCmdLineArgs& args = nxCmdLineArgs::GetInstance());

    bool IsHelpWanted() const { return _isHelpWanted; }  ///< `-help` or `--help` was given.

    /// @return what the last Read() found wrong, each error as a sentence without a full stop; safe to print.
    const std::vector<std::string>& GetMessages() const { return _messages; }
    /// @return the messages as lines "program: message", with a last line that names -help; empty without messages.
    std::string GetErrorText() const;

    /// @return the use, the purpose and all options, sorted by name, in lines of at most 80 characters.
    std::string GetHelp() const;

private:
    struct Words;

    void _Add(std::unique_ptr<nxOption> option);
    nxOption* _Find(std::string_view name) const;
    Words _Split(const char* const* argv) const;
    std::string _GetUnknownText(std::string_view word) const;
    void _CheckUnknown(const Words& words);
    nxErrorEnum _CheckValues(const Words& words, const nxCmdLineArgs& args);

    std::string _purpose;
    std::string _program;
    std::map<std::string, std::unique_ptr<nxOption>, std::less<>> _options;
    std::vector<std::unique_ptr<nxOption>> _refused;
    std::vector<std::string> _declarationFaults;
    std::vector<std::string>* _words = nullptr;
    std::string _wordsLabel;
    std::string _wordsMeaning;
    std::vector<std::string> _messages;
    bool _isHelpWanted = false;
};

#endif
