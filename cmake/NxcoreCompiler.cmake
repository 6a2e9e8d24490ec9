# What every target of the project is compiled with. Users of the library inherit none of it.

# Gives `target` the project's dialect, warnings and sanitizers. NO_COVERAGE is for what is unloaded again: the memory of
# its counters would count as lost.
function(nxcore_configure target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # Data touched without its lock, as core/thread/nxThreadAnnotations.h marks it, is a fault and no matter of taste.
        target_compile_options(${target} PRIVATE -Wthread-safety -Werror=thread-safety)
    endif()
    if(NXCORE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(NXCORE_SANITIZE)
        set(flags -fsanitize=${NXCORE_SANITIZE} -fno-omit-frame-pointer -g)
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
