#include "Args.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace corvane
{

bool parseUInt(const char *text, unsigned min, unsigned max, unsigned &out)
{
    if(text == nullptr || *text == '\0')
        return false;

    unsigned long long value = 0;

    for(const char *c = text; *c != '\0'; ++c)
    {
        if(*c < '0' || *c > '9')
            return false;
        value = value * 10 + unsigned(*c - '0');
        if(value > max)
            return false; // also keeps the sum from wrapping
    }
    if(value < min)
        return false;

    out = unsigned(value);
    return true;
}

bool parseFloat(const char *text, float min, float max, float &out)
{
    if(text == nullptr || *text == '\0')
        return false;

    // strtod's own syntax, less what a number typed here never means
    for(const char *c = text; *c != '\0'; ++c)
    {
        if(std::strchr("0123456789+-.eE", *c) == nullptr)
            return false;
    }

    char *end = nullptr;
    errno     = 0;

    const double value = std::strtod(text, &end);

    if(end == text || *end != '\0' || errno == ERANGE || !std::isfinite(value) ||
       value < double(min) || value > double(max))
        return false;

    out = float(value);
    return true;
}

} // namespace corvane
