/// The multi fields of the string, time, colour, BitVector and GLenum types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGMFBASETYPES_H_
#define _OSGMFBASETYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
