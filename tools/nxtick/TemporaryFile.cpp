// SPDX-License-Identifier: Apache-2.0
#include "TemporaryFile.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace nxtick
{
namespace
{
constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// The file to remove, where the signal handler finds it.
std::array<char, 64> nameToRemove{};
volatile std::sig_atomic_t directoryOfName = 0;
volatile std::sig_atomic_t hasName = 0;

void RemoveNamed(int signal)
{
    if (hasName != 0)
        ::unlinkat(directoryOfName, nameToRemove.data(), 0);
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void Remember(int directory, const std::string& name)
{
    nameToRemove = {};
    name.copy(nameToRemove.data(), nameToRemove.size() - 1);
    directoryOfName = directory;
    hasName = 1;
    for (const int signal : endingSignals)
        if (::signal(signal, &RemoveNamed) == SIG_IGN)
            ::signal(signal, SIG_IGN);  // the caller wants it ignored
}

bool IsDone(int error)
{
    errno = error;
    return error == 0;
}
}  // namespace

TemporaryFile::~TemporaryFile()
{
    _file.Drop();
    hasName = 0;
}

bool TemporaryFile::Create(int directory, mode_t mode)
{
    const SignalPause pause;
    const int error = _file.Create(directory, mode);
    if (!_file.GetName().empty())
        Remember(directory, _file.GetName());
    return IsDone(error);
}

bool TemporaryFile::Publish(const std::string& name)
{
    const SignalPause pause;
    const int error = _file.Publish(name);
    hasName = _file.GetName().empty() ? 0 : 1;
    return IsDone(error);
}

bool TemporaryFile::Replace(const std::string& name)
{
    const SignalPause pause;
    const int error = _file.Replace(name);
    hasName = 0;
    return IsDone(error);
}

SignalPause::SignalPause()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : endingSignals)
        sigaddset(&ending, signal);
    ::pthread_sigmask(SIG_BLOCK, &ending, &_before);
}

SignalPause::~SignalPause() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
}  // namespace nxtick
