/// GLU for the host core (NURBS, quadrics, error strings).
#ifndef _OSGGLU_H_
#define _OSGGLU_H_

#include <OpenSG/OSGGL.h>
#include <GL/glu.h>

#endif
