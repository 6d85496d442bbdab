/// The texture coordinates properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPTEXCOORDS_H_
#define _OSGGEOPROPTEXCOORDS_H_

#include <OpenSG/OSGGeoTexCoords.h>
#include <OpenSG/OSGGeoTexCoords1f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeoTexCoords3f.h>
#include <OpenSG/OSGGeoTexCoords4f.h>

#endif
