/// The multi fields of the matrix and quaternion types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGMFMATHTYPES_H_
#define _OSGMFMATHTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
