/// The header OpenSG programs include for FieldContainerFactory; the class is in OSGFieldContainerFactory.h.
#ifndef _OSGFIELDCONTAINERFACTORYIMPL_H_
#define _OSGFIELDCONTAINERFACTORYIMPL_H_

#include <OpenSG/OSGFieldContainerFactory.h>

#endif
