#ifndef CORE_LOG_NXLOGSTATEMENT_H
#define CORE_LOG_NXLOGSTATEMENT_H

#include "core/log/nxLog.h"
#include "core/log/nxLogManager.h"

/// One statement of NX_LOG: a record that is written when the statement ends. Use the macros.
class nxLogStatement
{
public:
    nxLogStatement(const nxLogLevelEnum& level, const char* sourceFile, unsigned line)
        : _record(level, sourceFile, line, nxTimeStamp::Now())
    {
    }
    ~nxLogStatement() { nxLogManager::GetInstance().Write(_record); }
    nxLogStatement(const nxLogStatement&) = delete;
    nxLogStatement& operator=(const nxLogStatement&) = delete;

    nxLog& Stream() { return _record; }

    /// Turns the streaming expression into one of type void.
    struct End
    {
        void operator&(const nxLog&) const {}
    };

private:
    nxLog _record;
};

#endif
