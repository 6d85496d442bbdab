#include <OpenSG/OSGFaceIterator.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

bool FaceIterator::setCorners(UInt32 step)
{
    const UInt32 type = _primIt.getType();
    const UInt32 len  = _primIt.getLength();

    switch(type)
    {
        case GL_QUADS:
            if(4 * step + 3 >= len)
                return false;
            for(Int32 c = 0; c < 4; ++c)
                _corner[c] = Int32(4 * step) + c;
            _length = 4;
            return true;

        case GL_QUAD_STRIP:
            // (0, 1, 3, 2), (2, 3, 5, 4), ...: each quad in drawing order
            if(2 * step + 3 >= len)
                return false;
            _corner[0] = Int32(2 * step);
            _corner[1] = Int32(2 * step + 1);
            _corner[2] = Int32(2 * step + 3);
            _corner[3] = Int32(2 * step + 2);
            _length    = 4;
            return true;

        case GL_POLYGON:
            if(len == 4)
            {
                if(step != 0)
                    return false;
                for(Int32 c = 0; c < 4; ++c)
                    _corner[c] = c;
                _length = 4;
                return true;
            }
            break;

        default:
            break;
    }

    _length = 3;
    return TriangleIterator::triangleCorners(type, len, step, _corner);
}

void FaceIterator::findNext(void)
{
    while(!_primIt.isAtEnd())
    {
        if(setCorners(_step))
        {
            if(_primIt.getType() != GL_TRIANGLE_STRIP ||
               !TriangleIterator::isDegenerate(_primIt, _corner))
                return;
            ++_step;
            continue;
        }
        ++_primIt;
        _step = 0;
    }
    _length = 0;
}

OSG_END_NAMESPACE
