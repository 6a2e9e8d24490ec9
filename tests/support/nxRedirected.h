#ifndef TESTS_SUPPORT_NXREDIRECTED_H
#define TESTS_SUPPORT_NXREDIRECTED_H

#include <unistd.h>

#include <cstdio>

/// Another descriptor in the place of a standard stream's, for as long as the object lives. It takes the other one over.
class nxRedirected
{
public:
    nxRedirected(int stream, int other) : _stream(stream), _before(dup(stream))
    {
        std::fflush(nullptr);
        dup2(other, stream);
        close(other);
    }
    ~nxRedirected()
    {
        dup2(_before, _stream);
        close(_before);
    }
    nxRedirected(const nxRedirected&) = delete;
    nxRedirected& operator=(const nxRedirected&) = delete;

private:
    int _stream;
    int _before;
};

#endif
