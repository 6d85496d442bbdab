#include <OpenSG/OSGTextureTransformChunk.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

StateChunkClass TextureTransformChunk::_class("TextureTransform", osgMaxTexCoords);

TextureTransformChunk::TextureTransformChunk(void) : Inherited()
{
}

TextureTransformChunk::TextureTransformChunk(const TextureTransformChunk &source)
    : Inherited(source)
{
}

TextureTransformChunk::~TextureTransformChunk(void)
{
}

void TextureTransformChunk::initMethod(void)
{
}

const StateChunkClass *TextureTransformChunk::getClass(void) const
{
    return &_class;
}

void TextureTransformChunk::activate(DrawActionBase *action, UInt32 unit)
{
    Window *win = action->getWindow();
    if(unit >= TextureChunk::coordinateUnits(win) || unit >= osgMaxTexCoords)
        return;

    TextureChunk::activateTexture(win, UInt16(unit));

    Matrix m;
    if(getUseCameraBeacon())
    {
        // the camera's rotation alone: eye directions to world directions
        m        = action->getCameraToWorld();
        m[3][0]  = 0;
        m[3][1]  = 0;
        m[3][2]  = 0;
        m[3][3]  = 1;
    }
    else
    {
        m = getMatrix();
    }

    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_TEXTURE);
    if(TextureChunk::_needTexMat[unit])
    {
        glLoadMatrixf(TextureChunk::_lastTexMat[unit].getValues());
        glMultMatrixf(m.getValues());
    }
    else
    {
        glLoadMatrixf(m.getValues());
    }
    glPopAttrib();

    TextureChunk::_needTransformMat[unit] = true;
    TextureChunk::_transformMat[unit]     = m;

    glErr("TextureTransformChunk::activate");
}

void TextureTransformChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 unit)
{
    if(old == this && !getUseCameraBeacon())
        return;
    // the new matrix replaces the old one: nothing to undo first
    activate(action, unit);
}

void TextureTransformChunk::deactivate(DrawActionBase *action, UInt32 unit)
{
    Window *win = action->getWindow();
    if(unit >= TextureChunk::coordinateUnits(win) || unit >= osgMaxTexCoords)
        return;

    TextureChunk::activateTexture(win, UInt16(unit));

    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_TEXTURE);
    if(TextureChunk::_needTexMat[unit])
        glLoadMatrixf(TextureChunk::_lastTexMat[unit].getValues());
    else
        glLoadIdentity();
    glPopAttrib();

    TextureChunk::_needTransformMat[unit] = false;

    glErr("TextureTransformChunk::deactivate");
}

bool TextureTransformChunk::operator==(const StateChunk &other) const
{
    const TextureTransformChunk *tother = dynamic_cast<const TextureTransformChunk *>(&other);
    return tother != NULL &&
           (tother == this || (getUseCameraBeacon() == tother->getUseCameraBeacon() &&
                               getMatrix().equals(tother->getMatrix(), Eps)));
}

void TextureTransformChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TextureTransformChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TextureTransformChunk NI" << std::endl;
}

OSG_END_NAMESPACE
