/// The single fields of the matrix and quaternion types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGSFMATHTYPES_H_
#define _OSGSFMATHTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
