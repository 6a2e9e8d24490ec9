// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGLEVELS_H
#define CORE_LOG_NXLOGLEVELS_H

#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/log/nxLogLevelRule.h"
#include "core/nxExport.h"

/// What the environment asks of the levels by source. Not in a program that has more rights than the user who started it.
struct NX_CORE_API nxLogLevelSettings
{
    /// NX_LOG_LEVELS: rules, such as "orders/=DBG,Gateway.cpp=ERR". None by default.
    std::string rules;
    /// NX_LOG_LEVEL_FILE: the absolute path of the level file. None by default.
    std::string file;

    /// Reads the settings through nxCmdLineArgs. Threads: any.
    static nxLogLevelSettings Read();
};

/// Levels by source: which files and folders report from which level on. They may change at any time, and each thread obeys
/// with its next statement.
///
/// A rule names sources and their level, `orders/=DBG`:
/// - `orders/` names the files in every folder "orders" and below it, `core/price/` those below two folders in sequence. A
///   slash in front anchors the rule at the root of the file system.
/// - `Gateway.cpp` names every file of that name, `core/price/Gateway.cpp` only those in such folders, and
///   `core/trunk/nxMutex` the reports of the library that name this source.
/// - A rule for a file wins over one for a folder, a longer text over a shorter one, and of two that are equally long the
///   one that fits nearer to the end of the path. Where no rule fits, nxLogManager::SetLogLevel() decides.
///
/// The path of a statement is what its compiler calls `__FILE__`: that of the header for a statement in a header. Statements
/// of NX_LOG_AT are known by the name that they give, and those of programs that were built with version 1.0 by the name of
/// the file without folders. A record that a program makes and writes itself (nxLogManager::Write()) obeys no rule.
///
/// A text of rules has one rule in a line, or several with commas between. `INF` or `level=INF` alone is the level for all
/// sources that no rule fits; `#` begins a comment; blanks around texts do not count. Of two rules for the same text the later
/// one holds. 256 rules are the most, with 255 bytes for the sources of each.
///
/// The level file, if there is one, holds such a text, at most 65535 bytes. The log's thread looks once a second whether it
/// has changed. As long as it exists, its rules hold in place of the program's, and its level for all in place of the
/// program's. When it is removed, what the program has set holds again. A file with a mistake is refused as a whole: what
/// held before goes on, and a warning in the log names file, line and mistake, once. So does a file that is not a regular one
/// or cannot be read.
///
/// - Cost: without rules a statement costs what it costs without this class. With rules, a statement of a level that not all
///   sources agree on costs a call more, about thirty instructions, whether it reports or not.
/// - Errors: returned, and nothing has changed then. NX_ERR_INSUFFICIENT_MEMORY is possible wherever an error is.
/// - Records that wait when a rule is set are written, but those of programs built with version 1.0 obey the new rule.
/// - Threads: any, not in signal handlers. While a rule is being set, statements of other threads obey it or the one before.
/// @code
/// std::string fault;
/// if (!nxLogLevels::Set("WRN, orders/=DBG, orders/Gateway.cpp=ERR", &fault).IsOK())
///     NX_LOG(NX_LOG_LEVEL_ERROR) << fault;
/// @endcode
class NX_CORE_API nxLogLevels
{
public:
    nxLogLevels() = delete;

    /// Sets the program's rules in place of all that it had, and its level for all where @p rules has one.
    /// @param fault if not null, takes what is wrong: "line 1: 'LOUD' is no level. ..."
    /// @return NX_ERR_INVALID_PARAMETER for a text that is not understood, NX_ERR_VALUE_OUT_OF_RANGE for too many rules.
    [[nodiscard]] static nxErrorEnum Set(std::string_view rules, std::string* fault = nullptr) noexcept;
    /// Adds one rule to the program's, or changes the level of the one for @p where.
    /// @return NX_ERR_INVALID_PARAMETER for an undefined level or a text that cannot name sources, NX_ERR_VALUE_OUT_OF_RANGE
    ///         for one rule too many.
    [[nodiscard]] static nxErrorEnum SetLevelFor(std::string_view where, const nxLogLevelEnum& level) noexcept;
    /// Removes the program's rules. The level for all stays.
    static void Clear() noexcept;

    /// @return the rules that hold: those of the level file while there is one, else the program's. Throws std::bad_alloc.
    static std::vector<nxLogLevelRule> GetRules();
    /// The level from which on statements of the source file @p path report.
    static nxLogLevelEnum GetLevelFor(std::string_view path) noexcept;

    /// Makes the file at @p path the level file; empty for none. It need not exist yet. It is looked at before this returns,
    /// and then by the log's thread, which is started.
    /// @return NX_ERR_INVALID_PARAMETER for a path that is not absolute.
    [[nodiscard]] static nxErrorEnum SetFile(std::string_view path) noexcept;
    /// @return the path of the level file; empty for none. Throws std::bad_alloc.
    static std::string GetFile();

    /// Does what @p settings ask for. What is wrong is told in the log, as a warning, and left out.
    static void Apply(const nxLogLevelSettings& settings) noexcept;
};

#endif
