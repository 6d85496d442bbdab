#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

// The class is called "Color", not "ColorMask", as in OpenSG.
StateChunkClass ColorMaskChunk::_class("Color", 1);

ColorMaskChunk::ColorMaskChunk(void) : Inherited()
{
}

ColorMaskChunk::ColorMaskChunk(const ColorMaskChunk &source) : Inherited(source)
{
}

ColorMaskChunk::~ColorMaskChunk(void)
{
}

void ColorMaskChunk::initMethod(void)
{
}

const StateChunkClass *ColorMaskChunk::getClass(void) const
{
    return &_class;
}

void ColorMaskChunk::activate(DrawActionBase *, UInt32)
{
    glColorMask(getMaskR(), getMaskG(), getMaskB(), getMaskA());
}

void ColorMaskChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    old->deactivate(action, index);
    activate(action, index);
}

void ColorMaskChunk::deactivate(DrawActionBase *, UInt32)
{
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

bool ColorMaskChunk::isTransparent(void) const
{
    return false;
}

Real32 ColorMaskChunk::switchCost(StateChunk *)
{
    return 0;
}

bool ColorMaskChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool ColorMaskChunk::operator==(const StateChunk &other) const
{
    const ColorMaskChunk *tother = dynamic_cast<const ColorMaskChunk *>(&other);
    if(tother == NULL)
        return false;
    return getMaskR() == tother->getMaskR() && getMaskG() == tother->getMaskG() &&
           getMaskB() == tother->getMaskB() && getMaskA() == tother->getMaskA();
}

bool ColorMaskChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void ColorMaskChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ColorMaskChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ColorMaskChunk NI" << std::endl;
}

OSG_END_NAMESPACE
