/// The colours properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPCOLORS_H_
#define _OSGGEOPROPCOLORS_H_

#include <OpenSG/OSGGeoColors.h>
#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoColors3ub.h>
#include <OpenSG/OSGGeoColors4ub.h>

#endif
