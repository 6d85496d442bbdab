#include <OpenSG/OSGPrimitiveIterator.h>

#include <algorithm>

OSG_BEGIN_NAMESPACE

PrimitiveIterator::PrimitiveIterator(void)
    : _geo(), _primIndex(0), _numPrimitives(0), _actPointIndex(0), _type(0), _length(0),
      _numVertices(0), _haveBound(false), _numMappings(1)
{
    std::fill(_mapIndex, _mapIndex + NumAttributes, Int16(-1));
}

PrimitiveIterator::PrimitiveIterator(const GeometryPtr &geo) : PrimitiveIterator()
{
    setGeo(geo);
}

PrimitiveIterator::PrimitiveIterator(const NodePtr &geo) : PrimitiveIterator()
{
    setGeo(geo);
}

void PrimitiveIterator::setGeo(const NodePtr &geo)
{
    setGeo(geo != NullFC ? GeometryPtr::dcast(geo->getCore()) : GeometryPtr());
}

void PrimitiveIterator::setGeo(const GeometryPtr &geo)
{
    _geo           = geo;
    _numPrimitives = 0;
    _numVertices   = 0;
    _haveBound     = false;
    _numMappings   = 1;
    std::fill(_mapIndex, _mapIndex + NumAttributes, Int16(-1));

    if(_geo == NullFC)
    {
        setToEnd();
        return;
    }

    GeoPTypesPtr   types   = _geo->getTypes();
    GeoPLengthsPtr lengths = _geo->getLengths();
    GeoIndicesPtr  ind     = _geo->getIndices();
    UInt32         nmap    = _geo->getMFIndexMapping()->size();

    _numMappings = std::max<UInt32>(1, nmap);
    for(UInt32 a = 0; a < NumAttributes; ++a)
        _mapIndex[a] = nmap >= 2 ? _geo->calcMappingIndex(UInt16(1 << a)) : 0;

    if(ind != NullFC)
    {
        _numVertices = ind->getSize() / _numMappings;
        _haveBound   = true;
    }
    else if(_geo->getPositions() != NullFC)
    {
        _numVertices = _geo->getPositions()->getSize();
        _haveBound   = true;
    }

    UInt32 ntypes = types != NullFC ? types->getSize() : 0;
    if(lengths != NullFC)
        _numPrimitives = std::min(ntypes, lengths->getSize());
    else
        _numPrimitives = std::min<UInt32>(ntypes, 1); // one primitive over everything

    setToBegin();
}

void PrimitiveIterator::startPrimitive(void)
{
    if(isAtEnd())
    {
        _type = _length = 0;
        return;
    }

    _type = _geo->getTypes()->getValue(UInt32(_primIndex));

    GeoPLengthsPtr lengths = _geo->getLengths();
    if(lengths != NullFC)
        _length = lengths->getValue(UInt32(_primIndex));
    else
        _length = _haveBound ? _numVertices : 0;

    // a primitive that runs past the data is cut short
    if(_haveBound)
    {
        UInt32 left = _actPointIndex < _numVertices ? _numVertices - _actPointIndex : 0;
        _length     = std::min(_length, left);
    }
}

void PrimitiveIterator::setToBegin(void)
{
    _primIndex     = 0;
    _actPointIndex = 0;
    startPrimitive();
}

void PrimitiveIterator::setToEnd(void)
{
    _primIndex     = Int32(_numPrimitives);
    _actPointIndex = 0;
    _type = _length = 0;
}

PrimitiveIterator &PrimitiveIterator::operator++(void)
{
    if(isAtEnd())
        return *this;

    GeoPLengthsPtr lengths = _geo->getLengths();
    // the next primitive starts after the full length, even when this one
    // was cut short
    _actPointIndex += lengths != NullFC ? lengths->getValue(UInt32(_primIndex)) : _length;
    ++_primIndex;
    startPrimitive();
    return *this;
}

void PrimitiveIterator::seek(Int32 index)
{
    setToBegin();
    while(!isAtEnd() && _primIndex < index)
        ++(*this);
}

bool PrimitiveIterator::isAtEnd(void) const
{
    return UInt32(_primIndex) >= _numPrimitives;
}

Int32 PrimitiveIterator::vertexIndex(UInt32 attribute, UInt32 vertex) const
{
    GeoIndicesPtr ind = _geo->getIndices();
    if(ind == NullFC)
        return Int32(vertex);

    if(_mapIndex[attribute] < 0)
        return -1;

    UInt32 at = vertex * _numMappings + UInt32(_mapIndex[attribute]);
    if(at >= ind->getSize())
        return -1;
    return Int32(ind->getValue(at));
}

Int32 PrimitiveIterator::getIndexIndex(Int32 which) const
{
    if(_geo == NullFC || _geo->getIndices() == NullFC)
        return -1;
    return (Int32(_actPointIndex) + which) * Int32(_numMappings);
}

Int32 PrimitiveIterator::getAttribIndex(UInt32 attribute, Int32 which) const
{
    if(_geo == NullFC || attribute >= NumAttributes || which < 0)
        return -1;
    if(const_cast<Geometry *>(_geo.getCPtr())->getProperty(1 << attribute) == NULL)
        return -1;
    return vertexIndex(attribute, _actPointIndex + UInt32(which));
}

Pnt3f PrimitiveIterator::getPosition(Int32 which) const
{
    Int32 i = getPositionIndex(which);
    if(i < 0 || UInt32(i) >= _geo->getPositions()->getSize())
        return Pnt3f();
    return _geo->getPositions()->getValue(UInt32(i));
}

Vec3f PrimitiveIterator::getNormal(Int32 which) const
{
    Int32 i = getNormalIndex(which);
    if(i < 0 || UInt32(i) >= _geo->getNormals()->getSize())
        return Vec3f();
    return _geo->getNormals()->getValue(UInt32(i));
}

Color3f PrimitiveIterator::getColor(Int32 which) const
{
    Int32 i = getColorIndex(which);
    if(i < 0 || UInt32(i) >= _geo->getColors()->getSize())
        return Color3f(0.f, 0.f, 0.f);
    return _geo->getColors()->getValue(UInt32(i));
}

Color3f PrimitiveIterator::getSecondaryColor(Int32 which) const
{
    Int32 i = getSecondaryColorIndex(which);
    if(i < 0 || UInt32(i) >= _geo->getSecondaryColors()->getSize())
        return Color3f(0.f, 0.f, 0.f);
    return _geo->getSecondaryColors()->getValue(UInt32(i));
}

Vec2f PrimitiveIterator::getTexCoordsN(UInt32 unit, Int32 which) const
{
    if(unit > 7)
        return Vec2f();
    Int32 i = getAttribIndex(TexCoords + unit, which);
    if(i < 0)
        return Vec2f();
    GeoTexCoordsPtr tc;
    switch(unit)
    {
        case 0: tc = _geo->getTexCoords(); break;
        case 1: tc = _geo->getTexCoords1(); break;
        case 2: tc = _geo->getTexCoords2(); break;
        case 3: tc = _geo->getTexCoords3(); break;
        case 4: tc = _geo->getTexCoords4(); break;
        case 5: tc = _geo->getTexCoords5(); break;
        case 6: tc = _geo->getTexCoords6(); break;
        case 7: tc = _geo->getTexCoords7(); break;
    }
    if(UInt32(i) >= tc->getSize())
        return Vec2f();
    return tc->getValue(UInt32(i));
}

bool PrimitiveIterator::operator==(const PrimitiveIterator &other) const
{
    if(_geo != other._geo)
        return false;
    if(isAtEnd() && other.isAtEnd())
        return true;
    return _primIndex == other._primIndex;
}

bool PrimitiveIterator::operator<(const PrimitiveIterator &other) const
{
    return _geo == other._geo && _primIndex < other._primIndex;
}

OSG_END_NAMESPACE
