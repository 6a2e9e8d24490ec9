#include "core/log/nxLogDeferredWriteThread.h"

#include "core/log/internal/nxLogWriter.h"

nxErrorEnum nxLogDeferredWriteThread::Run()
{
    nxLogWriter::GetInstance()._Run();
    return nxErrorEnum();
}
