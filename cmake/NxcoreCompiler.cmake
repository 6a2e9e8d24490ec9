# SPDX-License-Identifier: Apache-2.0
# What every target of the project is compiled with. Users of the library inherit none of it.

# Arithmetic that may be regrouped, or that knows no NaN, makes other prices.
function(nxcore_refuse_fast_math)
    string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
    get_directory_property(options COMPILE_OPTIONS)
    set(flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${type}} ${CMAKE_SHARED_LINKER_FLAGS} ${options}")
    if(flags MATCHES "-(Ofast|ffast-math|funsafe-math-optimizations|fassociative-math|freciprocal-math|ffinite-math-only|ffp-model=fast)")
        message(FATAL_ERROR "nxcore cannot be built with ${CMAKE_MATCH_0}: its prices would be other prices. Programs that use it may.")
    endif()
endfunction()
nxcore_refuse_fast_math()

# Where the package of the sources has them, and debuggers therefore look.
set(NXCORE_SOURCES_DIR "/usr/src/nxcore-${PROJECT_VERSION}")

# Gives `target` the project's dialect, warnings and sanitizers. FUZZED is for what fuzz targets are made of: it tells the
# fuzzer where an input has led. NO_COVERAGE is for what is unloaded again: the memory of its counters would count as lost.
function(nxcore_configure target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    # Doubles are the same on every processor: no product is fused with the sum that follows it.
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffp-contract=off)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # Data touched without its lock, as core/thread/nxThreadAnnotations.h marks it, is a fault and no matter of taste.
        target_compile_options(${target} PRIVATE -Wthread-safety -Werror=thread-safety)
    endif()
    if(NXCORE_PACKAGED_SOURCES)
        # The first map is for a build folder outside of the source. Of two that fit the last one counts.
        target_compile_options(${target} PRIVATE "-ffile-prefix-map=${PROJECT_BINARY_DIR}=${NXCORE_SOURCES_DIR}/build"
            "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=${NXCORE_SOURCES_DIR}")
    endif()
    if(NXCORE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(NXCORE_SANITIZE)
        set(sanitizers ${NXCORE_SANITIZE})
        if(NOT "FUZZED" IN_LIST ARGN)
            string(REPLACE "fuzzer-no-link," "" sanitizers "${sanitizers}")
        endif()
        # Reports need lines, which these kinds of builds have already.
        set(flags -fsanitize=${sanitizers} -fno-omit-frame-pointer $<$<NOT:$<CONFIG:Debug,RelWithDebInfo>>:-g1>)
        if(NXCORE_SANITIZE MATCHES "undefined")
            # A report that only scrolls by is no report.
            list(APPEND flags -fno-sanitize-recover=all)
        endif()
        target_compile_options(${target} PRIVATE ${flags})
        target_link_options(${target} PRIVATE ${flags})
    endif()
    if(NXCORE_COVERAGE AND NOT "NO_COVERAGE" IN_LIST ARGN)
        target_compile_options(${target} PRIVATE -fprofile-instr-generate -fcoverage-mapping)
        target_link_options(${target} PRIVATE -fprofile-instr-generate)
    endif()
endfunction()

# Compiles the sources of `target` in a few large pieces where NXCORE_UNITY asks for that.
function(nxcore_unite target)
    if(NXCORE_UNITY)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
        # Names of one source file hide those of the next.
        target_compile_options(${target} PRIVATE -Wno-shadow)
    endif()
endfunction()

# Compiles the headers of the C++ library that most sources of `target` include once for all of them, where NXCORE_PRECOMPILED
# asks for that. The test package.includes holds the sources to including these themselves nevertheless. Not with g++ and a
# sanitizer: g++ 12 then takes a sum of texts for a copy beyond the bounds.
function(nxcore_precompile target)
    if(NXCORE_PRECOMPILED AND NOT (NXCORE_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"))
        target_precompile_headers(${target} PRIVATE <algorithm> <atomic> <memory> <string> <string_view> <utility> <vector>)
    endif()
endfunction()

# Gives `target`, which is installed, what makes a fault of its own hard to use: the loader's tables are read-only, the
# stack and the C library's copies are guarded, and jumps lead to where a jump may lead.
function(nxcore_harden target)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
        target_compile_options(${target} PRIVATE -fcf-protection)
    endif()
    # Fortification needs optimisation and disturbs the sanitizers. Distributions set a level of their own.
    if(NOT NXCORE_SANITIZE AND NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
        target_compile_options(${target} PRIVATE
            $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
    endif()
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
endfunction()
