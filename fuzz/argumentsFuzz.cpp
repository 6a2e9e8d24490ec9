// SPDX-License-Identifier: Apache-2.0
// The command line and the environment: any words, any variables, every getter.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxOptions.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class Args : public nxCmdLineArgs
{
};

// Texts end in NUL; those after the text "ENV" are the environment.
struct Vectors
{
    std::vector<std::string> texts;
    std::vector<char*> argv;
    std::vector<char*> envp;

    Vectors(const std::uint8_t* data, std::size_t size)
    {
        for (std::size_t begin = 0; begin < size;)
        {
            std::size_t end = begin;
            while (end < size && data[end] != 0)
                ++end;
            texts.emplace_back(reinterpret_cast<const char*>(data + begin), end - begin);
            begin = end + 1;
        }
        std::vector<char*>* target = &argv;
        for (std::string& text : texts)
        {
            if (text == "ENV")
                target = &envp;
            else
                target->push_back(text.data());
        }
        argv.push_back(nullptr);
        envp.push_back(nullptr);
    }
};

void AskForEverything(const Args& args, const std::string& name)
{
    args.GetArgValueAsDecimal(name);
    args.GetArgValueAsVolume(name);
    args.GetArgValueAsDoubleValue(name);
    args.GetEnvValueAsBool(name, true);
    args.GetEnvValueAsBool(name);
    args.GetEnvValueAsDecimal(name);
    args.GetEnvValueAsVolume(name);
    args.GetEnvValueAsUInteger64(name);
    args.GetEnvValueAsDoubleValue(name);
    args.GetEnvValueAsHHMMSS(name);
}

// A failed reading changes nothing and says why; what is accepted is in its range.
void ReadDeclared(const Args& args)
{
    unsigned lots = 5;
    bool isQuiet = false;
    nxLogLevelEnum level;
    std::chrono::milliseconds wait{};
    std::vector<std::string> words;
    nxOptions options("Does nothing.");
    options.Add("a", lots, "N", "").Between(1, 1000).FromEnvironment("A");
    options.Add("quiet", isQuiet, "");
    options.Add("level", level, "LEVEL", "");
    options.Add("wait", wait, "TIME", "");
    options.AddWords(words, "WORD...", "");
    const bool isRead = options.Read(args).IsOK();
    Require(isRead == options.GetMessages().empty() && isRead == options.GetErrorText().empty());
    Require(isRead ? 1 <= lots && lots <= 1000 : lots == 5 && words.empty());
    Require(!options.GetHelp().empty());
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Vectors vectors(data, size);
    Args args;
    args.Initialise(vectors.argv.data(), vectors.envp.data());

    std::map<std::string, std::string> options;
    std::map<std::string, std::string> variables;
    std::vector<std::string> words;
    args.GetArgs(options);
    args.GetEnvs(variables);
    args.GetUnprocessedArgs(words);

    // Every word is the command, a name, a value, or left over.
    Require(options.size() + words.size() + 1 <= vectors.argv.size() || vectors.argv.size() == 1);
    Require(variables.size() < vectors.envp.size());
    for (const auto& [name, value] : options)
    {
        Require(args.IsArgDefined(name) && args.GetArgValue(name) == value);
        AskForEverything(args, name);
    }
    for (const auto& [name, value] : variables)
    {
        Require(name.find('=') == std::string::npos && args.GetEnvValue(name) == value);
        AskForEverything(args, name);
    }
    for (const std::string& word : words)
        Require(word.empty() || word.front() != '-');
    ReadDeclared(args);
    args.Dump(nxLogLevelEnum(NX_LOG_LEVEL_ERROR));
    return 0;
}
