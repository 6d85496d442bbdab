#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

bool osgGlCheckError(const char *file, int line, const char *msg)
{
    bool ok = true;
    // a lost or missing context keeps returning errors; don't spin on it
    for(int i = 0; i < 32; ++i)
    {
        GLenum err = glGetError();
        if(err == GL_NO_ERROR)
            break;
        FWARNING(("(%s,%d): %s failed: %s (%#x)\n", file, line, msg,
                  reinterpret_cast<const char *>(gluErrorString(err)), err));
        ok = false;
    }
    return ok;
}

OSG_END_NAMESPACE
