#include <OpenSG/OSGTwoSidedLightingChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

StateChunkClass TwoSidedLightingChunk::_class("TwoSidedLighting", 1);

TwoSidedLightingChunk::TwoSidedLightingChunk(void) : Inherited()
{
}

TwoSidedLightingChunk::TwoSidedLightingChunk(const TwoSidedLightingChunk &source)
    : Inherited(source)
{
}

TwoSidedLightingChunk::~TwoSidedLightingChunk(void)
{
}

void TwoSidedLightingChunk::initMethod(void)
{
}

const StateChunkClass *TwoSidedLightingChunk::getClass(void) const
{
    return &_class;
}

void TwoSidedLightingChunk::activate(DrawActionBase *, UInt32)
{
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
}

void TwoSidedLightingChunk::changeFrom(DrawActionBase *, StateChunk *old, UInt32)
{
    if(old == this)
        return;
    if(dynamic_cast<TwoSidedLightingChunk *>(old) == NULL)
    {
        FWARNING(("TwoSidedLightingChunk::changeFrom: caught non-TwoSidedLightingChunk!\n"));
        return;
    }
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
}

void TwoSidedLightingChunk::deactivate(DrawActionBase *, UInt32)
{
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
}

bool TwoSidedLightingChunk::isTransparent(void) const
{
    return false;
}

Real32 TwoSidedLightingChunk::switchCost(StateChunk *)
{
    return 0;
}

bool TwoSidedLightingChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool TwoSidedLightingChunk::operator==(const StateChunk &other) const
{
    return dynamic_cast<const TwoSidedLightingChunk *>(&other) != NULL;
}

bool TwoSidedLightingChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void TwoSidedLightingChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TwoSidedLightingChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TwoSidedLightingChunk NI" << std::endl;
}

OSG_END_NAMESPACE
