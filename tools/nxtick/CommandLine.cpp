// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

namespace nxtick
{
namespace
{
bool IsValue(const char* word)
{
    const std::string_view text = word == nullptr ? "--" : word;
    if (text.substr(0, 1) != "-" || text == "-")
        return true;
    const char second = text[1];
    return ('0' <= second && second <= '9') || second == '.';
}
}  // namespace

std::string Dashed(std::string_view name)
{
    std::string text = "-";
    return text += name;
}

bool Has(const Options& options, const char* name) { return options.count(name) != 0; }

std::string Value(const Options& options, const char* name)
{
    const auto found = options.find(name);
    return found == options.end() ? std::string() : found->second.front();
}

std::vector<std::string> Values(const Options& options, const char* name)
{
    const auto found = options.find(name);
    return found == options.end() ? std::vector<std::string>() : found->second;
}

CommandLine ReadCommandLine(const char* const* argv, const std::function<bool(const std::string&)>& takesValue)
{
    CommandLine line;
    std::string flag;  // the word before, if it is an option without a value
    bool isAfterOptions = false;
    for (argv += *argv != nullptr; *argv != nullptr; ++argv)
    {
        const std::string word = *argv;
        if (!isAfterOptions && word == "--")
            isAfterOptions = true;
        else if (isAfterOptions || IsValue(*argv))
        {
            if (line.operands.empty())
                line.optionBeforeOperand = flag;
            line.operands.push_back(word);
            line.files.push_back(word);
            flag.clear();
        }
        else
        {
            const std::size_t start = word.compare(0, 2, "--") == 0 ? 2 : 1;
            const std::size_t equals = word.find('=', start);
            const std::string name = word.substr(start, equals == std::string::npos ? equals : equals - start);
            const bool isValueNext = equals == std::string::npos && takesValue(name) && IsValue(argv[1]);
            flag = takesValue(name) ? "" : name;
            const std::string afterEquals = equals == std::string::npos ? std::string() : word.substr(equals + 1);
            const std::string value = isValueNext ? *++argv : afterEquals;
            line.options[name].push_back(value);
            if (name == "csv")
                line.files.push_back(value);
        }
    }
    return line;
}
}  // namespace nxtick
