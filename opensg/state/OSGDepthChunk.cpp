#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass DepthChunk::_class("Depth", 1);

DepthChunk::DepthChunk(void) : Inherited()
{
}

DepthChunk::DepthChunk(const DepthChunk &source) : Inherited(source)
{
}

DepthChunk::~DepthChunk(void)
{
}

void DepthChunk::initMethod(void)
{
}

const StateChunkClass *DepthChunk::getClass(void) const
{
    return &_class;
}

void DepthChunk::activate(DrawActionBase *, UInt32)
{
    if(getFunc() != GL_NONE)
        glDepthFunc(getFunc());

    if(getNear() >= 0 && getFar() >= 0)
        glDepthRange(getNear(), getFar());

    if(getEnable())
        glEnable(GL_DEPTH_TEST);
    else
        glDisable(GL_DEPTH_TEST);

    glDepthMask(getReadOnly() ? GL_FALSE : GL_TRUE);
}

void DepthChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    old->deactivate(action, index);
    activate(action, index);
}

void DepthChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getFunc() != GL_NONE)
        glDepthFunc(GL_LEQUAL);

    if(getNear() >= 0 && getFar() >= 0)
        glDepthRange(0, 1);

    if(!getEnable())
        glEnable(GL_DEPTH_TEST);

    glDepthMask(GL_TRUE);
}

bool DepthChunk::isTransparent(void) const
{
    return false;
}

Real32 DepthChunk::switchCost(StateChunk *)
{
    return 0;
}

bool DepthChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool DepthChunk::operator==(const StateChunk &other) const
{
    const DepthChunk *tother = dynamic_cast<const DepthChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;
    return getEnable() == tother->getEnable() && getFunc() == tother->getFunc() &&
           getFar() == tother->getFar() && getNear() == tother->getNear() &&
           getReadOnly() == tother->getReadOnly();
}

bool DepthChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void DepthChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DepthChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DepthChunk NI" << std::endl;
}

OSG_END_NAMESPACE
