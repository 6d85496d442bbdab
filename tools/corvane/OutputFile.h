/// How the main program writes its output files.
#ifndef _CORVANE_OUTPUTFILE_H_
#define _CORVANE_OUTPUTFILE_H_

#include <functional>
#include <string>

namespace corvane
{

/// Makes the file `name` through a temporary file beside it, which
/// `write` fills (it is given the temporary file's name), renamed over
/// `name` when it holds something: a half-written file is never seen
/// under the name, and a failed write leaves what was there. Nothing is
/// written through a symbolic link at `name`, and only a regular file is
/// replaced. False, with a message on standard error, when `name` is a
/// link or no regular file, or when writing fails or leaves the file
/// empty.
bool writeOutputFile(const std::string &name,
                     const std::function<bool(const std::string &tempName)> &write);

} // namespace corvane

#endif
