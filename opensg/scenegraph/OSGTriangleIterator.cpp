#include <OpenSG/OSGTriangleIterator.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

TriangleIterator::TriangleIterator(void) : _primIt(), _triIndex(0), _step(0)
{
    _corner[0] = _corner[1] = _corner[2] = 0;
}

TriangleIterator::TriangleIterator(const GeometryPtr &geo) : TriangleIterator()
{
    setGeo(geo);
}

TriangleIterator::TriangleIterator(const NodePtr &geo) : TriangleIterator()
{
    setGeo(geo);
}

void TriangleIterator::setGeo(const GeometryPtr &geo)
{
    _primIt.setGeo(geo);
    setToBegin();
}

void TriangleIterator::setGeo(const NodePtr &geo)
{
    _primIt.setGeo(geo);
    setToBegin();
}

void TriangleIterator::setToBegin(void)
{
    _primIt.setToBegin();
    _triIndex = 0;
    _step     = 0;
    findTriangle();
}

void TriangleIterator::setToEnd(void)
{
    _primIt.setToEnd();
    _triIndex = 0;
    _step     = 0;
}

bool TriangleIterator::isAtEnd(void) const
{
    return _primIt.isAtEnd();
}

TriangleIterator &TriangleIterator::operator++(void)
{
    if(isAtEnd())
        return *this;
    ++_triIndex;
    ++_step;
    findTriangle();
    return *this;
}

void TriangleIterator::seek(Int32 index)
{
    setToBegin();
    while(!isAtEnd() && _triIndex < index)
        ++(*this);
}

bool TriangleIterator::setCorners(UInt32 step)
{
    UInt32 len = _primIt.getLength();
    if(len < 3)
        return false;

    switch(_primIt.getType())
    {
        case GL_TRIANGLES:
            if(3 * step + 2 >= len)
                return false;
            _corner[0] = Int32(3 * step);
            _corner[1] = Int32(3 * step + 1);
            _corner[2] = Int32(3 * step + 2);
            return true;

        case GL_TRIANGLE_STRIP:
        case GL_QUAD_STRIP:
            if(step + 2 >= len)
                return false;
            // every other triangle swaps its first two corners so that all
            // keep the winding of the first
            if(step & 1)
            {
                _corner[0] = Int32(step + 1);
                _corner[1] = Int32(step);
            }
            else
            {
                _corner[0] = Int32(step);
                _corner[1] = Int32(step + 1);
            }
            _corner[2] = Int32(step + 2);
            return true;

        case GL_TRIANGLE_FAN:
        case GL_POLYGON:
            if(step + 2 >= len)
                return false;
            _corner[0] = 0;
            _corner[1] = Int32(step + 1);
            _corner[2] = Int32(step + 2);
            return true;

        case GL_QUADS:
        {
            UInt32 quad = step / 2;
            if(4 * quad + 3 >= len)
                return false;
            Int32 a    = Int32(4 * quad);
            _corner[0] = a;
            _corner[1] = (step & 1) ? a + 2 : a + 1;
            _corner[2] = (step & 1) ? a + 3 : a + 2;
            return true;
        }

        default: // points and lines have no triangles
            return false;
    }
}

void TriangleIterator::findTriangle(void)
{
    while(!_primIt.isAtEnd())
    {
        if(setCorners(_step))
        {
            UInt32 type = _primIt.getType();
            if(type != GL_TRIANGLE_STRIP && type != GL_QUAD_STRIP)
                return;

            // strips use repeated vertices to restart; such triangles are empty
            Int32 p0 = _primIt.getPositionIndex(_corner[0]);
            Int32 p1 = _primIt.getPositionIndex(_corner[1]);
            Int32 p2 = _primIt.getPositionIndex(_corner[2]);
            if(p0 != p1 && p1 != p2 && p0 != p2)
                return;

            ++_step;
            continue;
        }
        ++_primIt;
        _step = 0;
    }
}

bool TriangleIterator::operator==(const TriangleIterator &other) const
{
    if(getGeometry() != other.getGeometry())
        return false;
    if(isAtEnd() && other.isAtEnd())
        return true;
    if(isAtEnd() != other.isAtEnd())
        return false;
    return _triIndex == other._triIndex;
}

bool TriangleIterator::operator<(const TriangleIterator &other) const
{
    if(getGeometry() != other.getGeometry())
        return false;
    if(isAtEnd())
        return false;
    return other.isAtEnd() || _triIndex < other._triIndex;
}

OSG_END_NAMESPACE
