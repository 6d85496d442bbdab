/// The header OpenSG programs include for the container pointers; they are in OSGFieldContainerPtr.h.
#ifndef _OSGFIELDCONTAINERPTRIMPL_H_
#define _OSGFIELDCONTAINERPTRIMPL_H_

#include <OpenSG/OSGFieldContainerPtr.h>

#endif
