/// The normals properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPNORMALS_H_
#define _OSGGEOPROPNORMALS_H_

#include <OpenSG/OSGGeoNormals.h>
#include <OpenSG/OSGGeoNormals3f.h>

#endif
