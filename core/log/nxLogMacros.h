// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGMACROS_H
#define CORE_LOG_NXLOGMACROS_H

/// @file
/// The pattern in which everything reports: test the level, begin a record, stream into it, hand it over.
/// @code
/// NX_LOG(NX_LOG_LEVEL_INFO) << "order " << id << " at " << price;
/// @endcode

#include "core/log/nxLogManager.h"
#include "core/log/nxLogStatement.h"

/// A log record of level @p level (an nxLogLevelEnum or an nxEnumValue, without side effects) to stream values into. It
/// carries the name of this source file, without its folders, and the line, and is handed over at the end of the
/// statement. Below the threshold nothing that is streamed is evaluated. The statement must hold no co_await. A constant
/// that is no level does not compile; a value that is none, met at run time, is below every threshold. The compiler warns
/// of a `char`, which is logged as its number: stream `" "`, not `' '`.
#define NX_LOG(level) NX_LOG_AT(level, __FILE_NAME__, __LINE__)

/// The same with a source file name (a literal) and a line of the caller's choice.
#define NX_LOG_AT(level, file, line) \
    !nxLogManager::ShouldLog(level)  \
        ? (void)0                    \
        : nxLogStatement::End<NX_LOG_CONSTANT(level)>() & nxLogStatement(level, NX_LOG_SITE(file, line)).Stream()

/// The number of a level that is a constant, so that one that is no level does not compile. For the macros above.
#define NX_LOG_CONSTANT(level)                                                                 \
    (__builtin_constant_p(nxLogStatement::GetNumber(level)) ? nxLogStatement::GetNumber(level) \
                                                            : nxLogLevelEnum::MinimumValue + 1)

/// The static part of one statement. For the macros above.
#define NX_LOG_SITE(file, line)                                    \
    []() noexcept -> nxLogSite&                                    \
    {                                                              \
        static constinit nxLogSite nxLogStatementSite(file, line); \
        return nxLogStatementSite;                                 \
    }()

#endif
