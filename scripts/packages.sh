#!/usr/bin/env bash
# Sourced by the other scripts: installs what a fresh Debian machine lacks when it may, else says what to install.

# need COMMAND_OR_FILE PACKAGE ... (pairs): collects the packages whose command or file is missing and installs them.
need()
{
    local missing=()
    while [ $# -ge 2 ]; do
        if [[ $1 == /* ]]; then [ -e "$1" ] || missing+=("$2"); else command -v "$1" >/dev/null 2>&1 || missing+=("$2"); fi
        shift 2
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ] || ! command -v apt-get >/dev/null 2>&1; then
        echo "Missing packages, and no right to install them here. As root, run:" >&2
        echo "    apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}" >&2
    { apt-get update -q && DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"; } >&2
}

# What every build needs, and what the tests need beside it.
need_build_tools() { need g++ g++ cmake cmake ninja ninja-build; }
need_test_tools() { need_build_tools && need /usr/include/fmt/format.h libfmt-dev gdb gdb /usr/include/gtest/gtest.h libgtest-dev /usr/include/gmock/gmock.h libgmock-dev pkg-config pkg-config python3 python3; }
# The major version of the second compiler, which its tools' names end in.
clang_version() { clang++ -dumpversion | cut -d. -f1; }
# The second compiler, with its sanitizers, coverage and formatter, in the version that the machine has.
need_clang_tools()
{
    need clang++ clang clang-format clang-format || return 1
    need "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-$(uname -m).a" "libclang-rt-$(clang_version)-dev" \
        "llvm-cov-$(clang_version)" "llvm-$(clang_version)"
}
# The benchmarks' library and peers.
need_benchmark_tools()
{
    need_build_tools && need python3 python3 /usr/include/benchmark/benchmark.h libbenchmark-dev \
        /usr/include/spdlog/spdlog.h libspdlog-dev /usr/include/fmt/format.h libfmt-dev \
        /usr/include/absl/base/config.h libabsl-dev /usr/include/boost/version.hpp libboost-dev gperf gperf \
        /usr/include/bid_functions.h libintelrdfpmath-dev /usr/include/csv.h libcsv-dev \
        /usr/include/log4cplus/logger.h liblog4cplus-dev
}
