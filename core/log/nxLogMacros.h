// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGMACROS_H
#define CORE_LOG_NXLOGMACROS_H

/// @file
/// The pattern in which everything reports: test the level, begin a record, stream into it, hand it over.
/// @code
/// NX_LOG(NX_LOG_LEVEL_INFO) << "order " << id << " at " << price;
/// @endcode

#include "core/log/inline/nxLogGate.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogStatement.h"

/// A log record of level @p level (an nxLogLevelEnum or an nxEnumValue, without side effects) to stream values into. It
/// carries the name of this source file, without its folders, and the line, and is handed over at the end of the
/// statement. Below the level of the log, or below that of a rule for this file or a folder of it (see nxLogLevels), nothing
/// that is streamed is evaluated. The statement must hold no co_await. A constant that is no level does not compile; a value
/// that is none, met at run time, is below every level. The compiler warns of a `char`, which is logged as its number:
/// stream `" "`, not `' '`.
#define NX_LOG(level) NX_LOG_FROM(level, (__FILE__, __LINE__, sizeof(__FILE__) - sizeof(__FILE_NAME__)))

/// The same with a source file name (a literal) and a line of the caller's choice.
#define NX_LOG_AT(level, file, line) NX_LOG_FROM(level, (file, line))

/// The same with the arguments of an nxLogSite, in parentheses. For the macros above.
#define NX_LOG_FROM(level, place)                      \
    !nxLogGate::Wants(level, NX_LOG_SITE_GETTER place) \
        ? (void)0                                      \
        : nxLogStatement::End<NX_LOG_CONSTANT(level)>() & nxLogStatement(level, NX_LOG_SITE place).Stream()

/// The number of a level that is a constant, so that one that is no level does not compile. For the macros above.
#define NX_LOG_CONSTANT(level)                                                                 \
    (__builtin_constant_p(nxLogStatement::GetNumber(level)) ? nxLogStatement::GetNumber(level) \
                                                            : nxLogLevelEnum::MinimumValue + 1)

/// The static part of one statement. For the macros above.
#define NX_LOG_SITE(...) NX_LOG_SITE_GETTER(__VA_ARGS__)()

/// A function that returns the static part. For the macros above: each use has a part of its own.
#define NX_LOG_SITE_GETTER(...)                                     \
    []() noexcept -> nxLogSite&                                     \
    {                                                               \
        static constinit nxLogSite nxLogStatementSite(__VA_ARGS__); \
        return nxLogStatementSite;                                  \
    }

#endif
