// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXTESTARGUMENTS_H
#define TESTS_SUPPORT_NXTESTARGUMENTS_H

#include <map>
#include <string>
#include <vector>

#include "core/app/nxCmdLineArgs.h"

/// argv or envp: writable texts with a null at the end.
class nxTestPointers
{
public:
    nxTestPointers(std::vector<std::string> texts) : _texts(std::move(texts))
    {
        for (std::string& text : _texts)
            _pointers.push_back(text.data());
        _pointers.push_back(nullptr);
    }
    char** Get() { return _pointers.data(); }

private:
    std::vector<std::string> _texts;
    std::vector<char*> _pointers;
};

/// A separate object, because the one of the process reads its arguments only once.
class nxTestArguments : public nxCmdLineArgs
{
public:
    using Map = std::map<std::string, std::string>;
    using Words = std::vector<std::string>;

    nxTestArguments() = default;
    nxTestArguments(const Words& argv, const Words& envp) : _argvStore(argv), _envpStore(envp)
    {
        Initialise(_argvStore.Get(), _envpStore.Get());
    }

    Map Options() const
    {
        Map options;
        GetArgs(options);
        return options;
    }

private:
    nxTestPointers _argvStore{{}};
    nxTestPointers _envpStore{{}};
};

#endif
