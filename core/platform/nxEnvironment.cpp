#include "core/platform/nxEnvironment.h"

#include <sys/auxv.h>

#include <cstdlib>
#include <exception>

std::string nxEnvironment::Get(const std::string& name)
try
{
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::string() : std::string(value);
}
catch (const std::exception&)
{
    return {};
}

bool nxEnvironment::Set(const std::string& name, const std::string& value)
{
    return ::setenv(name.c_str(), value.c_str(), 1) == 0;
}

bool nxEnvironment::IsSecureExecution() { return ::getauxval(AT_SECURE) != 0; }
