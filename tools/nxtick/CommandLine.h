// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_COMMANDLINE_H
#define NXTICK_COMMANDLINE_H

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nxtick
{
/// The values of each option by its name without dashes, in the order of the command line. An option without a value has
/// an empty one.
using Options = std::map<std::string, std::vector<std::string>>;

/// The words of a command line.
///
/// An option begins with one dash or two; its value is the next word or follows "=". A word that begins with a dash is a
/// value only if it is a number, "-", or follows "=". After "--" every word is an operand.
struct CommandLine
{
    Options options;
    std::vector<std::string> operands;
    std::vector<std::string> files;  ///< Operands and values of -csv, in their order.
    /// The option that the first operand follows, if that has no value; otherwise empty.
    std::string optionBeforeOperand;
};

/// An option as the user writes it.
std::string Dashed(std::string_view name);

bool Has(const Options& options, const char* name);
/// The first value of the option, or empty.
std::string Value(const Options& options, const char* name);
/// All values of the option.
std::vector<std::string> Values(const Options& options, const char* name);

/// @param argv words up to a null entry; the first is the command. @param takesValue says it of an option's name.
CommandLine ReadCommandLine(const char* const* argv, const std::function<bool(const std::string&)>& takesValue);
}  // namespace nxtick

#endif
