/// BasicActorBase lives with ActorBase.
#ifndef _OSGBASICACTORBASE_H_
#define _OSGBASICACTORBASE_H_

#include <OpenSG/OSGActorBase.h>

#endif
