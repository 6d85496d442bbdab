/// All statistics element types.
#ifndef _OSGSTATELEMTYPES_H_
#define _OSGSTATELEMTYPES_H_

#include <OpenSG/OSGStatIntElem.h>
#include <OpenSG/OSGStatIntOnceElem.h>
#include <OpenSG/OSGStatRealElem.h>
#include <OpenSG/OSGStatStringElem.h>
#include <OpenSG/OSGStatTimeElem.h>

#endif
