/// The single fields of the vector and point types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGSFVECTYPES_H_
#define _OSGSFVECTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
