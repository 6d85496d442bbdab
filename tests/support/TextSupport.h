/// Small checks on texts (log lines, file contents) for the tests.
#ifndef _CORVANE_TESTS_TEXTSUPPORT_H_
#define _CORVANE_TESTS_TEXTSUPPORT_H_

#include <string>

namespace corvanetest
{

/// True when part occurs anywhere in text.
inline bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

} // namespace corvanetest

#endif
