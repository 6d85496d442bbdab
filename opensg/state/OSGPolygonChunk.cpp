#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass PolygonChunk::_class("Polygon", 1);

namespace
{
inline void setEnabled(GLenum cap, bool on)
{
    if(on)
        glEnable(cap);
    else
        glDisable(cap);
}

// The stipple is 32 rows of 32 bits, given as 32 Int32 = 128 bytes.
inline void applyStipple(const MFInt32 &stipple)
{
    glPolygonStipple(reinterpret_cast<const GLubyte *>(&stipple[0]));
    glEnable(GL_POLYGON_STIPPLE);
}
} // namespace

PolygonChunk::PolygonChunk(void) : Inherited()
{
}

PolygonChunk::PolygonChunk(const PolygonChunk &source) : Inherited(source)
{
}

PolygonChunk::~PolygonChunk(void)
{
}

void PolygonChunk::initMethod(void)
{
}

const StateChunkClass *PolygonChunk::getClass(void) const
{
    return &_class;
}

void PolygonChunk::activate(DrawActionBase *, UInt32)
{
    if(getCullFace() != GL_NONE)
    {
        glCullFace(getCullFace());
        glEnable(GL_CULL_FACE);
    }

    if(getFrontFace() != GL_CCW)
        glFrontFace(getFrontFace());

    if(getSmooth())
        glEnable(GL_POLYGON_SMOOTH);

    if(getFrontMode() != GL_FILL)
        glPolygonMode(GL_FRONT, getFrontMode());
    if(getBackMode() != GL_FILL)
        glPolygonMode(GL_BACK, getBackMode());

    if(getOffsetFactor() != 0 || getOffsetBias() != 0)
        glPolygonOffset(getOffsetFactor(), getOffsetBias());

    if(getOffsetPoint())
        glEnable(GL_POLYGON_OFFSET_POINT);
    if(getOffsetLine())
        glEnable(GL_POLYGON_OFFSET_LINE);
    if(getOffsetFill())
        glEnable(GL_POLYGON_OFFSET_FILL);

    if(getMFStipple()->size() == 32)
        applyStipple(*getMFStipple());
}

void PolygonChunk::changeFrom(DrawActionBase *action, StateChunk *old_chunk, UInt32 index)
{
    if(old_chunk == this)
        return;

    PolygonChunk *old = dynamic_cast<PolygonChunk *>(old_chunk);
    if(old == NULL)
    {
        old_chunk->deactivate(action, index);
        activate(action, index);
        return;
    }

    if(getCullFace() != old->getCullFace())
    {
        if(getCullFace() != GL_NONE)
        {
            glCullFace(getCullFace());
            glEnable(GL_CULL_FACE);
        }
        else
        {
            glDisable(GL_CULL_FACE);
        }
    }

    if(getFrontFace() != old->getFrontFace())
        glFrontFace(getFrontFace());

    if(getSmooth() != old->getSmooth())
        setEnabled(GL_POLYGON_SMOOTH, getSmooth());

    if(getFrontMode() != old->getFrontMode())
        glPolygonMode(GL_FRONT, getFrontMode());
    if(getBackMode() != old->getBackMode())
        glPolygonMode(GL_BACK, getBackMode());

    if(getOffsetFactor() != old->getOffsetFactor() || getOffsetBias() != old->getOffsetBias())
        glPolygonOffset(getOffsetFactor(), getOffsetBias());

    if(getOffsetPoint() != old->getOffsetPoint())
        setEnabled(GL_POLYGON_OFFSET_POINT, getOffsetPoint());
    if(getOffsetLine() != old->getOffsetLine())
        setEnabled(GL_POLYGON_OFFSET_LINE, getOffsetLine());
    if(getOffsetFill() != old->getOffsetFill())
        setEnabled(GL_POLYGON_OFFSET_FILL, getOffsetFill());

    bool newStipple = getMFStipple()->size() == 32;
    bool oldStipple = old->getMFStipple()->size() == 32;
    if(newStipple)
        applyStipple(*getMFStipple());
    else if(oldStipple)
        glDisable(GL_POLYGON_STIPPLE);
}

void PolygonChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getCullFace() != GL_NONE)
        glDisable(GL_CULL_FACE);

    if(getFrontFace() != GL_CCW)
        glFrontFace(GL_CCW);

    if(getSmooth())
        glDisable(GL_POLYGON_SMOOTH);

    if(getFrontMode() != GL_FILL)
        glPolygonMode(GL_FRONT, GL_FILL);
    if(getBackMode() != GL_FILL)
        glPolygonMode(GL_BACK, GL_FILL);

    if(getOffsetPoint())
        glDisable(GL_POLYGON_OFFSET_POINT);
    if(getOffsetLine())
        glDisable(GL_POLYGON_OFFSET_LINE);
    if(getOffsetFill())
        glDisable(GL_POLYGON_OFFSET_FILL);

    if(getMFStipple()->size() == 32)
        glDisable(GL_POLYGON_STIPPLE);
}

bool PolygonChunk::isTransparent(void) const
{
    return false;
}

Real32 PolygonChunk::switchCost(StateChunk *)
{
    return 0;
}

bool PolygonChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool PolygonChunk::operator==(const StateChunk &other) const
{
    const PolygonChunk *tother = dynamic_cast<const PolygonChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;

    // stipples are not compared element by element: any stipple makes two
    // chunks different
    return getCullFace() == tother->getCullFace() && getFrontFace() == tother->getFrontFace() &&
           getFrontMode() == tother->getFrontMode() && getBackMode() == tother->getBackMode() &&
           getSmooth() == tother->getSmooth() &&
           getOffsetFactor() == tother->getOffsetFactor() &&
           getOffsetBias() == tother->getOffsetBias() &&
           getOffsetPoint() == tother->getOffsetPoint() &&
           getOffsetLine() == tother->getOffsetLine() &&
           getOffsetFill() == tother->getOffsetFill() &&
           getMFStipple()->size() == tother->getMFStipple()->size() &&
           getMFStipple()->empty();
}

bool PolygonChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void PolygonChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PolygonChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PolygonChunk NI" << std::endl;
}

OSG_END_NAMESPACE
