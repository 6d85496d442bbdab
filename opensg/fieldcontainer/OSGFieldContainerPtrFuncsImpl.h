/// The header OpenSG programs include for addRefCP, beginEditCP and the like; they are in OSGFieldContainerPtr.h.
#ifndef _OSGFIELDCONTAINERPTRFUNCSIMPL_H_
#define _OSGFIELDCONTAINERPTRFUNCSIMPL_H_

#include <OpenSG/OSGFieldContainerPtr.h>

#endif
