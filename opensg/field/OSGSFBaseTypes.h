/// The single fields of the string, time, colour, BitVector and GLenum types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGSFBASETYPES_H_
#define _OSGSFBASETYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
