/// The multi fields of the vector and point types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGMFVECTYPES_H_
#define _OSGMFVECTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
