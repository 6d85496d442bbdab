/// Symbol export of the X window library (nothing to do on Linux).
#ifndef _OSGWINDOWXDEF_H_
#define _OSGWINDOWXDEF_H_

#define OSG_WINDOWXLIB_DLLMAPPING
#define OSG_WINDOWXLIB_DLLTMPLMAPPING

#endif
