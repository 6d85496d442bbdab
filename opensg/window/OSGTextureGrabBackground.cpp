#include <OpenSG/OSGTextureGrabBackground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <cstdlib>

OSG_BEGIN_NAMESPACE

TextureGrabBackground::TextureGrabBackground(void) : Inherited()
{
}

TextureGrabBackground::TextureGrabBackground(const TextureGrabBackground &source)
    : Inherited(source)
{
}

TextureGrabBackground::~TextureGrabBackground(void)
{
}

void TextureGrabBackground::initMethod(void)
{
}

void TextureGrabBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TextureGrabBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TextureGrabBackground NI" << std::endl;
}

void TextureGrabBackground::clear(DrawActionBase *action, Viewport *port)
{
    TextureChunkPtr tex = getTexture();
    Window         *win = action != NULL ? action->getWindow() : NULL;

    if(tex == NullFC || port == NULL || win == NULL || tex->getImage() == NullFC)
    {
        Inherited::clear(action, port);
        return;
    }

    const Int32 pw = port->getPixelWidth();
    const Int32 ph = port->getPixelHeight();

    if(pw < 1 || ph < 1)
    {
        Inherited::clear(action, port);
        return;
    }

    ImagePtr img = tex->getImage();

    if((img->getWidth() <= 1 && img->getHeight() <= 1) ||
       (getAutoResize() &&
        (std::abs(img->getWidth() - pw) > 1 || std::abs(img->getHeight() - ph) > 1)))
    {
        // The edit reaches the chunk, which makes a texture of the new size.
        beginEditCP(img);
        img->set(img->getPixelFormat(), pw, ph);
        endEditCP(img);
    }

    win->validateGLObject(tex->getGLId());

    GLenum bindTarget = getBindTarget();

    if(bindTarget == GL_NONE)
        bindTarget = img->getHeight() > 1 ? GL_TEXTURE_2D : GL_TEXTURE_1D;

    if(bindTarget == GL_TEXTURE_3D)
    {
        SWARNING << "TextureGrabBackground::clear: can't grab into a 3D texture" << std::endl;
        Inherited::clear(action, port);
        return;
    }

    const GLenum copyTarget = getCopyTarget() != GL_NONE ? getCopyTarget() : bindTarget;

    const Int32 w = osgMin(Int32(img->getWidth()), pw);
    const Int32 h = osgMin(Int32(img->getHeight()), ph);

    glBindTexture(bindTarget, win->getGLObjectId(tex->getGLId()));

    if(copyTarget == GL_TEXTURE_1D)
        glCopyTexSubImage1D(copyTarget, 0, 0, port->getPixelLeft(), port->getPixelBottom(), w);
    else
        glCopyTexSubImage2D(copyTarget, 0, 0, 0, port->getPixelLeft(), port->getPixelBottom(),
                            w, h);

    glBindTexture(bindTarget, 0);

    Inherited::clear(action, port);
}

OSG_END_NAMESPACE
