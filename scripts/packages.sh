#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Sourced by the other scripts: says which Debian packages the machine lacks, and installs them where that is allowed.
#
# Root is asked on a terminal. Without one, as in a container or in CI, root installs them.
# NXCORE_INSTALL_PACKAGES=1 installs without a question; 0 installs nothing.

# may_install PACKAGE...: whether the packages may be installed here.
may_install()
{
    [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null 2>&1 || return 1
    case ${NXCORE_INSTALL_PACKAGES:-} in
        0) return 1 ;;
        1) return 0 ;;
    esac
    [ -t 0 ] && [ -t 2 ] || return 0
    local answer
    read -r -p "Install $*? [y/N] " answer
    [[ $answer == [yY]* ]]
}

# need COMMAND_OR_FILE PACKAGE ... (pairs): collects the packages whose command or file is missing and installs them.
need()
{
    local missing=()
    while [ $# -ge 2 ]; do
        if [[ $1 == /* ]]; then [ -e "$1" ] || missing+=("$2"); else command -v "$1" >/dev/null 2>&1 || missing+=("$2"); fi
        shift 2
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if ! may_install "${missing[@]}"; then
        echo "Packages are missing. Install them as root:" >&2
        echo "    apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}" >&2
    { apt-get update -q && DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"; } >&2
}

# What every build needs, and what the tests need beside it.
build_tools=(g++ g++ cmake cmake ninja ninja-build)
need_build_tools() { need "${build_tools[@]}"; }
need_test_tools() { need "${build_tools[@]}" /usr/include/fmt/format.h libfmt-dev gdb gdb /usr/include/gtest/gtest.h libgtest-dev /usr/include/gmock/gmock.h libgmock-dev pkg-config pkg-config python3 python3 /usr/share/zoneinfo/America/Chicago tzdata; }
# Programs of the system with which single tests work. A test whose program is missing is skipped by name.
want_test_programs()
{
    local modules=/usr/lib/python3/dist-packages
    need logrotate logrotate \
        zstd zstd \
        xz xz-utils \
        lnav lnav \
        jq jq \
        zsh zsh \
        spin spin \
        $modules/numpy/version.py python3-numpy \
        $modules/z3/z3.py python3-z3 \
        $modules/prometheus_client/__init__.py python3-prometheus-client ||
        echo "The tests that need them are skipped." >&2
}
# The major version of the second compiler, which its tools' names end in.
clang_version() { clang++ -dumpversion | cut -d. -f1; }
# The second compiler, with its sanitizers, coverage and formatter, in the version that the machine has.
need_clang_tools()
{
    need clang++ clang clang-format clang-format || return 1
    need "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-$(uname -m).a" "libclang-rt-$(clang_version)-dev" \
        "llvm-cov-$(clang_version)" "llvm-$(clang_version)"
}
# The other C++ library, in the version of the second compiler.
need_libcxx() { need "/usr/lib/llvm-$(clang_version)/include/c++/v1/vector" "libc++-$(clang_version)-dev" "/usr/lib/llvm-$(clang_version)/lib/libc++abi.so" "libc++abi-$(clang_version)-dev"; }
# The benchmarks' library and peers.
need_benchmark_tools()
{
    need "${build_tools[@]}" python3 python3 /usr/include/benchmark/benchmark.h libbenchmark-dev \
        /usr/include/spdlog/spdlog.h libspdlog-dev /usr/include/fmt/format.h libfmt-dev \
        /usr/include/absl/base/config.h libabsl-dev /usr/include/boost/version.hpp libboost-dev gperf gperf \
        /usr/include/bid_functions.h libintelrdfpmath-dev /usr/include/csv.h libcsv-dev \
        /usr/include/fast_float/fast_float.h libfast-float-dev \
        /usr/include/log4cplus/logger.h liblog4cplus-dev \
        /usr/include/oneapi/tbb.h libtbb-dev
}
