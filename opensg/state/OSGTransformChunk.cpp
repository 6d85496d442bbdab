#include <OpenSG/OSGTransformChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

StateChunkClass TransformChunk::_class("Transform", 1);

TransformChunk::TransformChunk(void) : Inherited()
{
}

TransformChunk::TransformChunk(const TransformChunk &source) : Inherited(source)
{
}

TransformChunk::~TransformChunk(void)
{
}

void TransformChunk::initMethod(void)
{
}

const StateChunkClass *TransformChunk::getClass(void) const
{
    return &_class;
}

void TransformChunk::activate(DrawActionBase *, UInt32)
{
    glPushMatrix();
    glMultMatrixf(getMatrix().getValues());
}

void TransformChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    if(old == this)
        return;
    old->deactivate(action, index);
    activate(action, index);
}

void TransformChunk::deactivate(DrawActionBase *, UInt32)
{
    glPopMatrix();
}

bool TransformChunk::isTransparent(void) const
{
    return false;
}

Real32 TransformChunk::switchCost(StateChunk *)
{
    return 0;
}

bool TransformChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool TransformChunk::operator==(const StateChunk &other) const
{
    const TransformChunk *tother = dynamic_cast<const TransformChunk *>(&other);
    return tother != NULL && (tother == this || getMatrix().equals(tother->getMatrix(), Eps));
}

bool TransformChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void TransformChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TransformChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TransformChunk NI" << std::endl;
}

OSG_END_NAMESPACE
