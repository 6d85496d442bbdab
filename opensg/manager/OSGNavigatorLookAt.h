/// The look-at step the navigators share: the camera-to-world matrix of an
/// eye at from looking at at, written into m only when it exists (up not
/// along the view direction, from != at). True when it failed.
#ifndef _OSGNAVIGATORLOOKAT_H_
#define _OSGNAVIGATORLOOKAT_H_

#include <OpenSG/OSGMatrixUtility.h>

OSG_BEGIN_NAMESPACE

inline bool navigatorLookAtFailed(Matrix &m, const Pnt3f &from, const Pnt3f &at,
                                  const Vec3f &up)
{
    Matrix look;
    if(!MatrixLookAt(look, from, at, up))
        return true;
    m = look;
    return false;
}

OSG_END_NAMESPACE

#endif
