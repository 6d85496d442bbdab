/// SFFieldContainerPtr, declared with the other container pointer fields.
#ifndef _OSGSFFIELDCONTAINERPTR_H_
#define _OSGSFFIELDCONTAINERPTR_H_

#include <OpenSG/OSGFieldContainerFields.h>

#endif
