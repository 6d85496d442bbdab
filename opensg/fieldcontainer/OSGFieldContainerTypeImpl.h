/// The header OpenSG programs include for FieldContainerType; the class is in OSGFieldContainerType.h.
#ifndef _OSGFIELDCONTAINERTYPEIMPL_H_
#define _OSGFIELDCONTAINERTYPEIMPL_H_

#include <OpenSG/OSGFieldContainerType.h>

#endif
