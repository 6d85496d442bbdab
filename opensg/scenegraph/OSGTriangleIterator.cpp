#include <OpenSG/OSGTriangleIterator.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

bool TriangleIterator::triangleCorners(UInt32 type, UInt32 len, UInt32 step, Int32 corner[3])
{
    if(len < 3)
        return false;

    switch(type)
    {
        case GL_TRIANGLES:
            if(3 * step + 2 >= len)
                return false;
            corner[0] = Int32(3 * step);
            corner[1] = Int32(3 * step + 1);
            corner[2] = Int32(3 * step + 2);
            return true;

        case GL_TRIANGLE_STRIP:
        case GL_QUAD_STRIP:
            if(step + 2 >= len)
                return false;
            // every other triangle swaps its first two corners so that all
            // keep the winding of the first
            if(step & 1)
            {
                corner[0] = Int32(step + 1);
                corner[1] = Int32(step);
            }
            else
            {
                corner[0] = Int32(step);
                corner[1] = Int32(step + 1);
            }
            corner[2] = Int32(step + 2);
            return true;

        case GL_TRIANGLE_FAN:
        case GL_POLYGON:
            if(step + 2 >= len)
                return false;
            corner[0] = 0;
            corner[1] = Int32(step + 1);
            corner[2] = Int32(step + 2);
            return true;

        case GL_QUADS:
        {
            UInt32 quad = step / 2;
            if(4 * quad + 3 >= len)
                return false;
            Int32 a    = Int32(4 * quad);
            corner[0] = a;
            corner[1] = (step & 1) ? a + 2 : a + 1;
            corner[2] = (step & 1) ? a + 3 : a + 2;
            return true;
        }

        default: // points and lines have no triangles
            return false;
    }
}

bool TriangleIterator::isDegenerate(const PrimitiveIterator &primIt, const Int32 corner[3])
{
    Int32 p0 = primIt.getPositionIndex(corner[0]);
    Int32 p1 = primIt.getPositionIndex(corner[1]);
    Int32 p2 = primIt.getPositionIndex(corner[2]);
    return p0 == p1 || p1 == p2 || p0 == p2;
}

void TriangleIterator::findNext(void)
{
    while(!_primIt.isAtEnd())
    {
        if(triangleCorners(_primIt.getType(), _primIt.getLength(), _step, _corner))
        {
            UInt32 type = _primIt.getType();
            if(type != GL_TRIANGLE_STRIP && type != GL_QUAD_STRIP)
                return;

            if(!isDegenerate(_primIt, _corner))
                return;

            ++_step;
            continue;
        }
        ++_primIt;
        _step = 0;
    }
}

OSG_END_NAMESPACE
