/// The header OpenSG programs include for FieldDescription; the class is in OSGFieldDescription.h.
#ifndef _OSGFIELDDESCRIPTIONIMPL_H_
#define _OSGFIELDDESCRIPTIONIMPL_H_

#include <OpenSG/OSGFieldDescription.h>

#endif
