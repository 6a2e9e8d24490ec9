#ifndef CORE_PLATFORM_NXPLATFORMTHREAD_H
#define CORE_PLATFORM_NXPLATFORMTHREAD_H

/// What the library asks of the system about the calling thread.
class nxPlatformThread
{
public:
    /// @return the system's number of the calling thread.
    static unsigned GetID();

    /// Sleeps for the whole time, whatever signals arrive. 0 yields the processor.
    static void SleepMilliseconds(unsigned milliseconds);
};

#endif
