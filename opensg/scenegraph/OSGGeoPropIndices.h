/// The indices properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPINDICES_H_
#define _OSGGEOPROPINDICES_H_

#include <OpenSG/OSGGeoIndices.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoIndicesUI16.h>

#endif
