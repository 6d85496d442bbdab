/// The multi fields of the bool, integer and real types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGMFSYSTYPES_H_
#define _OSGMFSYSTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
