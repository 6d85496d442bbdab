/// The primitive lengths properties: the abstract kind and its stored types.
#ifndef _OSGGEOPROPLENGTHS_H_
#define _OSGGEOPROPLENGTHS_H_

#include <OpenSG/OSGGeoPLengths.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPLengthsUI16.h>
#include <OpenSG/OSGGeoPLengthsUI8.h>

#endif
