#include <OpenSG/OSGFogChunk.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass FogChunk::_class("Fog", 1);

FogChunk::FogChunk(void) : Inherited()
{
}

FogChunk::FogChunk(const FogChunk &source) : Inherited(source)
{
}

FogChunk::~FogChunk(void)
{
}

void FogChunk::initMethod(void)
{
}

const StateChunkClass *FogChunk::getClass(void) const
{
    return &_class;
}

void FogChunk::activate(DrawActionBase *, UInt32)
{
    glFogi(GL_FOG_MODE, GLint(getMode()));
    glFogfv(GL_FOG_COLOR, getColor().getValuesRGBA());
    glFogf(GL_FOG_START, getStart());
    glFogf(GL_FOG_END, getEnd());
    glFogf(GL_FOG_DENSITY, getDensity());
    glEnable(GL_FOG);
}

void FogChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    if(old == this)
        return;
    old->deactivate(action, index);
    activate(action, index);
}

void FogChunk::deactivate(DrawActionBase *, UInt32)
{
    glDisable(GL_FOG);
}

bool FogChunk::isTransparent(void) const
{
    return false;
}

Real32 FogChunk::switchCost(StateChunk *)
{
    return 0;
}

bool FogChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool FogChunk::operator==(const StateChunk &other) const
{
    const FogChunk *tother = dynamic_cast<const FogChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;
    return getMode() == tother->getMode() && getColor() == tother->getColor() &&
           getStart() == tother->getStart() && getEnd() == tother->getEnd() &&
           getDensity() == tother->getDensity();
}

bool FogChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void FogChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void FogChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FogChunk NI" << std::endl;
}

OSG_END_NAMESPACE
