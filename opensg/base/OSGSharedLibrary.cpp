#include <OpenSG/OSGSharedLibrary.h>

#include <cstdio>
#include <dlfcn.h>

OSG_BEGIN_NAMESPACE

SharedLibrary::SharedLibrary(void)
    : _name(), _hasName(false), _handle(NULL), _type(Invalid)
{
}

SharedLibrary::SharedLibrary(const Char8 *libraryName)
    : _name(), _hasName(false), _handle(NULL), _type(Invalid)
{
    open(libraryName);
}

SharedLibrary::~SharedLibrary(void)
{
    close();
}

bool SharedLibrary::open(const Char8 *libraryName)
{
    if(_handle != NULL)
        close();

    _hasName = true;
    if(libraryName == NULL)
    {
        _name = "Application";
        _type = Application;
    }
    else
    {
        _name = libraryName;
        _type = SharedLib;
    }

    _handle = dlopen(_type == Application ? NULL : _name.c_str(),
                     RTLD_LAZY | RTLD_GLOBAL);
    if(_handle == NULL)
    {
        const char *err = dlerror();
        std::fprintf(stderr, "%s\n", err != NULL ? err : "");
    }
    return _handle != NULL;
}

bool SharedLibrary::close(void)
{
    if(_handle == NULL)
        return false;

    int rc  = dlclose(_handle);
    _handle = NULL;
    return rc == 0;
}

const Char8 *SharedLibrary::getName(void) const
{
    return _hasName ? _name.c_str() : NULL;
}

AnonSymbolHandle SharedLibrary::getSymbol(const Char8 *symbolName)
{
    if(_handle == NULL)
    {
        if(!_hasName)
            return NULL;
        if(!open(_type == Application ? NULL : _name.c_str()))
            return NULL;
    }

    dlerror();
    void *result = dlsym(_handle, symbolName != NULL ? symbolName : "");
    if(result == NULL)
    {
        const char *err = dlerror();
        if(err != NULL)
            std::fputs(err, stderr);
    }

    std::fprintf(stderr, "Got Symbol : %s %p %p\n",
                 symbolName != NULL ? symbolName : "(null)", _handle, result);
    return result;
}

OSG_END_NAMESPACE
