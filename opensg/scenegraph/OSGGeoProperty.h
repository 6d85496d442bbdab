/// Every geometry property class.
#ifndef _OSGGEOPROPERTY_H_
#define _OSGGEOPROPERTY_H_

#include <OpenSG/OSGGeoPropPositions.h>
#include <OpenSG/OSGGeoPropNormals.h>
#include <OpenSG/OSGGeoPropColors.h>
#include <OpenSG/OSGGeoPropTexCoords.h>
#include <OpenSG/OSGGeoPropIndices.h>
#include <OpenSG/OSGGeoPropPTypes.h>
#include <OpenSG/OSGGeoPropLengths.h>

#endif
