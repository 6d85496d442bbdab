/// Symbol export of the GLUT window library (nothing to do on Linux).
#ifndef _OSGWINDOWGLUTDEF_H_
#define _OSGWINDOWGLUTDEF_H_

#define OSG_WINDOWGLUTLIB_DLLMAPPING
#define OSG_WINDOWGLUTLIB_DLLTMPLMAPPING

#endif
