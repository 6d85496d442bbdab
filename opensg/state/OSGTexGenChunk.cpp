#include <OpenSG/OSGTexGenChunk.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

StateChunkClass TexGenChunk::_class("TexGen", osgMaxTexCoords);

namespace
{

/// One generated coordinate: its GL names and the chunk's settings.
struct TexGenCoordinate
{
    GLenum  coord;   // GL_S ...
    GLenum  enable;  // GL_TEXTURE_GEN_S ...
    GLenum  func;
    Vec4f   plane;
    NodePtr beacon;

    /// Generation is on for this coordinate: a function or a beacon.
    bool generates(void) const { return func != GL_NONE || beacon != NullFC; }
};

void texGenCoordinates(const TexGenChunk &c, TexGenCoordinate out[4])
{
    out[0] = {GL_S, GL_TEXTURE_GEN_S, c.getGenFuncS(), c.getGenFuncSPlane(), c.getSBeacon()};
    out[1] = {GL_T, GL_TEXTURE_GEN_T, c.getGenFuncT(), c.getGenFuncTPlane(), c.getTBeacon()};
    out[2] = {GL_R, GL_TEXTURE_GEN_R, c.getGenFuncR(), c.getGenFuncRPlane(), c.getRBeacon()};
    out[3] = {GL_Q, GL_TEXTURE_GEN_Q, c.getGenFuncQ(), c.getGenFuncQPlane(), c.getQBeacon()};
}

/// An eye-linear plane given in the space the model-view matrix mv maps
/// to eye coordinates (OpenGL transforms the plane by its inverse).
void texGenEyePlane(const TexGenCoordinate &c, const Matrix &mv)
{
    glPushMatrix();
    glLoadMatrixf(mv.getValues());
    glTexGeni(c.coord, GL_TEXTURE_GEN_MODE, GL_EYE_LINEAR);
    glTexGenfv(c.coord, GL_EYE_PLANE, c.plane.getValues());
    glPopMatrix();
}

} // namespace

TexGenChunk::TexGenChunk(void) : Inherited()
{
}

TexGenChunk::TexGenChunk(const TexGenChunk &source) : Inherited(source)
{
}

TexGenChunk::~TexGenChunk(void)
{
}

void TexGenChunk::initMethod(void)
{
}

const StateChunkClass *TexGenChunk::getClass(void) const
{
    return &_class;
}

void TexGenChunk::activate(DrawActionBase *action, UInt32 unit)
{
    Window *win = action->getWindow();
    if(unit >= TextureChunk::coordinateUnits(win))
        return;

    TextureChunk::activateTexture(win, UInt16(unit));

    TexGenCoordinate cs[4];
    texGenCoordinates(*this, cs);

    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_MODELVIEW);
    for(const TexGenCoordinate &c : cs)
    {
        if(c.beacon != NullFC)
        {
            // viewing * beacon to world: the plane lives in the beacon's space
            Matrix mv;
            action->getCameraToWorld().inverse(mv);
            mv.mult(c.beacon->getToWorld());
            texGenEyePlane(c, mv);
        }
        else if(c.func == GL_EYE_LINEAR)
        {
            texGenEyePlane(c, Matrix::identity());
        }
        else if(c.func != GL_NONE)
        {
            glTexGeni(c.coord, GL_TEXTURE_GEN_MODE, GLint(c.func));
            if(c.func == GL_OBJECT_LINEAR)
                glTexGenfv(c.coord, GL_OBJECT_PLANE, c.plane.getValues());
        }
        else
        {
            continue;
        }
        glEnable(c.enable);
    }
    glPopAttrib();

    glErr("TexGenChunk::activate");
}

void TexGenChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 unit)
{
    if(old == this)
        return;
    // a coordinate this chunk generates is set anew; one it leaves alone
    // is switched off if the old chunk generated it
    TexGenChunk *oldgen = dynamic_cast<TexGenChunk *>(old);
    if(oldgen == NULL)
    {
        old->deactivate(action, unit);
        activate(action, unit);
        return;
    }

    Window *win = action->getWindow();
    if(unit >= TextureChunk::coordinateUnits(win))
        return;

    TexGenCoordinate mine[4], theirs[4];
    texGenCoordinates(*this, mine);
    texGenCoordinates(*oldgen, theirs);

    TextureChunk::activateTexture(win, UInt16(unit));
    for(UInt32 i = 0; i < 4; ++i)
    {
        if(theirs[i].generates() && !mine[i].generates())
            glDisable(mine[i].enable);
    }
    activate(action, unit);
}

void TexGenChunk::deactivate(DrawActionBase *action, UInt32 unit)
{
    Window *win = action->getWindow();
    if(unit >= TextureChunk::coordinateUnits(win))
        return;

    TextureChunk::activateTexture(win, UInt16(unit));

    TexGenCoordinate cs[4];
    texGenCoordinates(*this, cs);
    for(const TexGenCoordinate &c : cs)
    {
        if(c.generates())
            glDisable(c.enable);
    }

    glErr("TexGenChunk::deactivate");
}

bool TexGenChunk::isTransparent(void) const
{
    return false;
}

Real32 TexGenChunk::switchCost(StateChunk *)
{
    return 0;
}

bool TexGenChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool TexGenChunk::operator==(const StateChunk &other) const
{
    const TexGenChunk *o = dynamic_cast<const TexGenChunk *>(&other);
    if(o == NULL)
        return false;
    if(o == this)
        return true;

    TexGenCoordinate mine[4], theirs[4];
    texGenCoordinates(*this, mine);
    texGenCoordinates(*o, theirs);
    for(UInt32 i = 0; i < 4; ++i)
    {
        if(mine[i].func != theirs[i].func || mine[i].beacon != theirs[i].beacon ||
           !mine[i].plane.equals(theirs[i].plane, Eps))
            return false;
    }
    return true;
}

bool TexGenChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void TexGenChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TexGenChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TexGenChunk NI" << std::endl;
}

OSG_END_NAMESPACE
