/// The pointer and field types of every geometry property, without the
/// classes themselves.
#ifndef _OSGGEOPROPPTRS_H_
#define _OSGGEOPROPPTRS_H_

#include <OpenSG/OSGGeoPositionsFields.h>
#include <OpenSG/OSGGeoNormalsFields.h>
#include <OpenSG/OSGGeoColorsFields.h>
#include <OpenSG/OSGGeoTexCoordsFields.h>
#include <OpenSG/OSGGeoIndicesFields.h>
#include <OpenSG/OSGGeoPTypesFields.h>
#include <OpenSG/OSGGeoPLengthsFields.h>
#include <OpenSG/OSGGeoPositions2fFields.h>
#include <OpenSG/OSGGeoPositions3fFields.h>
#include <OpenSG/OSGGeoPositions4fFields.h>
#include <OpenSG/OSGGeoNormals3fFields.h>
#include <OpenSG/OSGGeoColors3fFields.h>
#include <OpenSG/OSGGeoColors4fFields.h>
#include <OpenSG/OSGGeoColors3ubFields.h>
#include <OpenSG/OSGGeoColors4ubFields.h>
#include <OpenSG/OSGGeoTexCoords1fFields.h>
#include <OpenSG/OSGGeoTexCoords2fFields.h>
#include <OpenSG/OSGGeoTexCoords3fFields.h>
#include <OpenSG/OSGGeoTexCoords4fFields.h>
#include <OpenSG/OSGGeoIndicesUI32Fields.h>
#include <OpenSG/OSGGeoIndicesUI16Fields.h>
#include <OpenSG/OSGGeoPTypesUI8Fields.h>
#include <OpenSG/OSGGeoPLengthsUI32Fields.h>
#include <OpenSG/OSGGeoPLengthsUI16Fields.h>
#include <OpenSG/OSGGeoPLengthsUI8Fields.h>

#endif
