/// OpenGL for the host core: the GL headers with prototypes, and the checked
/// error query. Entry points beyond OpenGL 1.x that a library must be able to
/// miss are fetched through Window::getFunction, not called directly.
#ifndef _OSGGL_H_
#define _OSGGL_H_

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>
#include <GL/glext.h>

#include <OpenSG/OSGBaseTypes.h>

OSG_BEGIN_NAMESPACE

/// Reads every pending GL error, logging each one with the place and what
/// was attempted; true when there was none.
bool osgGlCheckError(const char *file, int line, const char *msg);

OSG_END_NAMESPACE

#define glErr(text) OSG::osgGlCheckError(__FILE__, __LINE__, text)

#endif
