/// The single fields of the bool, integer and real types; all base fields are declared in OSGBaseFields.h.
#ifndef _OSGSFSYSTYPES_H_
#define _OSGSFSYSTYPES_H_

#include <OpenSG/OSGBaseFields.h>

#endif
