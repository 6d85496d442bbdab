/// OpenSG 1.8's old trackball class, which SimpleSceneManager's navigators
/// replaced. Programs still include this header; the class is declared so
/// that they compile, and it has no implementation here.
#ifndef _OSGTRACKBALL_H_
#define _OSGTRACKBALL_H_

#include <OpenSG/OSGConfig.h>

OSG_BEGIN_NAMESPACE

class Trackball;

OSG_END_NAMESPACE

#endif
