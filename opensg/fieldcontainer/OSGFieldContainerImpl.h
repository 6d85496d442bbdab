/// The header OpenSG programs include for FieldContainer; the class is in OSGFieldContainer.h.
#ifndef _OSGFIELDCONTAINERIMPL_H_
#define _OSGFIELDCONTAINERIMPL_H_

#include <OpenSG/OSGFieldContainer.h>

#endif
