#ifndef CORE_LOG_NXLOG_H
#define CORE_LOG_NXLOG_H

#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/log/nxLogCharLenPair.h"
#include "core/nxExport.h"
#include "core/time/nxTimeStamp.h"

class nxBitMask;
class nxBitMask64;

/// One log record: a text with a level, the place that reported it, the time and the thread.
///
/// Build one, stream values into it and hand it to nxLogManager::Write(); the macros of nxLogMacros.h do all of that in
/// one statement, test the level first and are faster. A record of one's own is for the cases that they do not serve: a
/// source file known only at run time, a text that grows over several statements, an immediate write.
///
/// - Errors: none. A message is cut, and says so, beyond a mebibyte or when there is no memory.
/// - Threads: like a string.
/// - Ownership: the record owns copies of all that was streamed and of the file name; nothing passed in is kept.
/// @code
/// nxLog record(NX_LOG_LEVEL_WARNING, "feed/session", 88, nxTimeStamp());
/// record << "gap of " << count << " messages";
/// nxLogManager::GetInstance().Write(record);
/// @endcode
class NX_CORE_API nxLog
{
public:
    /// Starts a record without text, of the calling thread.
    /// @param sourceFile the reporting file, copied; null is as empty.
    nxLog(const nxLogLevelEnum& level, const char* sourceFile, unsigned line, const nxTimeStamp& timeStamp);

    nxLogLevelEnum GetLogLevel() const { return _level; }
    /// The message: the texts of all values, one after the other.
    std::string GetText() const { return _text; }
    const char* GetSourceFile() const { return _sourceFile.c_str(); }
    unsigned GetLineNumber() const { return _line; }
    nxTimeStamp GetTimeStamp() const { return _timeStamp; }
    /// nxThreadIndex of the thread that built the record.
    unsigned GetThreadIndex() const { return _threadIndex; }

    /// "TRUE" or "FALSE".
    nxLog& operator<<(bool value);
    /// Integers, characters included, as decimal numbers.
    nxLog& operator<<(char value);
    nxLog& operator<<(signed char value);         ///< @copydoc operator<<(char)
    nxLog& operator<<(unsigned char value);       ///< @copydoc operator<<(char)
    nxLog& operator<<(short value);               ///< @copydoc operator<<(char)
    nxLog& operator<<(unsigned short value);      ///< @copydoc operator<<(char)
    nxLog& operator<<(int value);                 ///< @copydoc operator<<(char)
    nxLog& operator<<(unsigned value);            ///< @copydoc operator<<(char)
    nxLog& operator<<(long value);                ///< @copydoc operator<<(char)
    nxLog& operator<<(unsigned long value);       ///< @copydoc operator<<(char)
    nxLog& operator<<(long long value);           ///< @copydoc operator<<(char)
    nxLog& operator<<(unsigned long long value);  ///< @copydoc operator<<(char)
    /// Text as it is; null is as empty.
    nxLog& operator<<(const char* text);
    nxLog& operator<<(const std::string& text);       ///< Text as it is, NULs included.
    nxLog& operator<<(std::string_view text);         ///< @copydoc operator<<(const std::string&)
    nxLog& operator<<(const nxLogCharLenPair& text);  ///< @copydoc operator<<(const std::string&)
    /// An address as "0x" and hexadecimal digits.
    nxLog& operator<<(const void* address);
    /// An enumeration or an error code by its short description.
    nxLog& operator<<(const nxEnum& value);
    /// The short descriptions of the flags that are set, separated by blanks.
    nxLog& operator<<(const nxBitMask& mask);
    nxLog& operator<<(const nxBitMask64& mask);  ///< @copydoc operator<<(const nxBitMask&)

private:
    nxLogLevelEnum _level;
    std::string _text;
    std::string _sourceFile;
    unsigned _line;
    nxTimeStamp _timeStamp;
    unsigned _threadIndex;
};

#endif
