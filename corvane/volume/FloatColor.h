/// The colour of a transfer-function control point: red, green, blue, each
/// from 0 to 1.
#ifndef _FLOATCOLOR_H_
#define _FLOATCOLOR_H_

#include <OpenSG/OSGBaseTypes.h>

struct FloatColor
{
    FloatColor(void) : r(0.f), g(0.f), b(0.f) {}
    /// A colour of these components (0 to 1).
    FloatColor(osg::Real32 red, osg::Real32 green, osg::Real32 blue)
        : r(red), g(green), b(blue)
    {
    }

    /// Component by component, exactly.
    /// @{
    bool operator==(const FloatColor &other) const
    {
        return r == other.r && g == other.g && b == other.b;
    }
    bool operator!=(const FloatColor &other) const { return !(*this == other); }
    /// @}

    osg::Real32 r; ///< red, 0 to 1

    osg::Real32 g; ///< green, 0 to 1

    osg::Real32 b; ///< blue, 0 to 1
};

#endif
