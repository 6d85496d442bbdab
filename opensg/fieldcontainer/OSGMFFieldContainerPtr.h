/// MFFieldContainerPtr, declared with the other container pointer fields.
#ifndef _OSGMFFIELDCONTAINERPTR_H_
#define _OSGMFFIELDCONTAINERPTR_H_

#include <OpenSG/OSGFieldContainerFields.h>

#endif
