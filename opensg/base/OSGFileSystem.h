/// Small file-system helpers: access tests, the current directory, listing.
#ifndef _OSGFILESYSTEM_H_
#define _OSGFILESYSTEM_H_

#include <OpenSG/OSGBaseFunctions.h>

#include <vector>

OSG_BEGIN_NAMESPACE

namespace AccessFlags
{
const UInt32 None         = 0x0000;
const UInt32 IsReadable   = 0x0001;
const UInt32 IsWriteable  = 0x0002;
const UInt32 IsExecutable = 0x0004;
} // namespace AccessFlags

namespace File
{
/// True when the file exists and (where flags are given) allows that access.
bool tstAttr(const Char8 *szFilename, UInt32 uiAccessFlags = AccessFlags::None);
} // namespace File

namespace Directory
{
/// True when the name is a directory that allows the given access.
bool tstAttr(const Char8 *szDirname, UInt32 uiAccessFlags = AccessFlags::None);

/// The current working directory in a new[] string the caller deletes;
/// NULL on failure.
Char8 *getCurrent(void);

/// chdir; false for NULL or on failure.
bool setCurrent(const Char8 *szDirname);

/// The entries of a directory matching the shell pattern (all for NULL),
/// each a new[] string; NULL when the directory can't be read. The caller
/// deletes the strings and the vector.
std::vector<Char8 *> *getEntries(const Char8 *szDirname, const Char8 *szPattern = NULL);
} // namespace Directory

OSG_END_NAMESPACE

#endif
