// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXFUNCTORTHREADOPTIONS_H
#define CORE_THREAD_NXFUNCTORTHREADOPTIONS_H

#include <cstddef>
#include <string>
#include <vector>

/// How an nxFunctorThread or an nxFunctorThreadPool is started.
///
/// Threads: a plain value. Start() keeps nothing of it.
struct nxFunctorThreadOptions
{
    /// How many functors may wait, at least 1. Each takes 64 bytes, all at the start.
    std::size_t capacity = 4096;
    /// The name of the threads that top, ps and debuggers show, cut to 15 bytes. Empty: "functors". Threads of a pool have
    /// "-1", "-2" and so on after it.
    std::string name = {};
    /// Numbers of the processors on which every thread may run, from 0. Empty: those of the thread that calls Start().
    /// Those that the machine does not have are left out if it has others of them.
    std::vector<int> processors = {};
};

#endif
