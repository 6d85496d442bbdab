/// The positions properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPPOSITIONS_H_
#define _OSGGEOPROPPOSITIONS_H_

#include <OpenSG/OSGGeoPositions.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoPositions4f.h>

#endif
