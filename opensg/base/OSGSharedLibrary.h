/// A dynamically loaded library (dlopen) or the application itself.
#ifndef _OSGSHAREDLIBRARY_H_
#define _OSGSHAREDLIBRARY_H_

#include <OpenSG/OSGBaseTypes.h>

#include <string>

OSG_BEGIN_NAMESPACE

typedef void *SharedHandle;
typedef void *AnonSymbolHandle;

/// Messages go straight to stderr, not to the log: loading can happen
/// before the log is usable.
class SharedLibrary
{
  public:
    enum SharedLibraryType
    {
        Invalid     = 0,
        Application = 1,
        SharedLib   = 2
    };

    /// Closed, no name, type Invalid.
    SharedLibrary(void);
    /// Opens at once; NULL means the application itself ("Application").
    explicit SharedLibrary(const Char8 *libraryName);
    ~SharedLibrary(void);

    SharedLibrary(const SharedLibrary &) = delete;
    SharedLibrary &operator=(const SharedLibrary &) = delete;

    /// Closes any open library, keeps the name (even if opening then fails)
    /// and dlopens with RTLD_LAZY | RTLD_GLOBAL; dlerror() goes to stderr on
    /// failure.
    bool open(const Char8 *libraryName);
    /// False when nothing is open or dlclose fails.
    bool close(void);
    bool isOpen(void) const { return _handle != NULL; }

    /// The last name given; NULL if none ever was.
    const Char8 *getName(void) const;
    SharedLibraryType getType(void) const { return _type; }

    /// dlsym, reopening under the stored name first if needed. Reports
    /// "Got Symbol : <name> <handle> <result>" on stderr.
    AnonSymbolHandle getSymbol(const Char8 *symbolName);

  private:
    std::string       _name;
    bool              _hasName;
    SharedHandle      _handle;
    SharedLibraryType _type;
};

OSG_END_NAMESPACE

#endif
