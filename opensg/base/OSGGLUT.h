/// The system's GLUT header for OpenSG programs: include it first, then call
/// GLUT directly (glutInit, glutCreateWindow, the callbacks, glutMainLoop).
/// Nothing of GLUT is wrapped. Define OSG_NO_GLUT_GLSUBDIR where glut.h is
/// not in a GL/ folder.
#ifndef _OSGGLUT_H_
#define _OSGGLUT_H_

#include <OpenSG/OSGConfig.h>

#if defined(__APPLE__)
#include <GLUT/glut.h>
#elif defined(OSG_NO_GLUT_GLSUBDIR)
#include <glut.h>
#else
#include <GL/glut.h>
#endif

#endif
