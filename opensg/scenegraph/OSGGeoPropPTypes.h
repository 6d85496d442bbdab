/// The primitive types properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPPTYPES_H_
#define _OSGGEOPROPPTYPES_H_

#include <OpenSG/OSGGeoPTypes.h>
#include <OpenSG/OSGGeoPTypesUI8.h>

#endif
