#include <OpenSG/OSGImageForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

ImageForeground::ImageForeground(void) : Inherited()
{
}

ImageForeground::ImageForeground(const ImageForeground &source) : Inherited(source)
{
}

ImageForeground::~ImageForeground(void)
{
}

void ImageForeground::initMethod(void)
{
}

void ImageForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ImageForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ImageForeground NI" << std::endl;
}

void ImageForeground::addImage(ImagePtr image, Pnt2f position)
{
    getImages().push_back(image);
    getPositions().push_back(position);
}

void ImageForeground::draw(DrawActionBase *, Viewport *port)
{
    if(!getActive() || port == NULL)
        return;

    bool any = false;

    for(UInt32 i = 0; i < getImages().size(); ++i)
        any = any || getImages(i) != NullFC;

    if(!any)
        return;

    glPushAttrib(GL_POLYGON_BIT | GL_DEPTH_BUFFER_BIT | GL_LIGHTING_BIT | GL_ENABLE_BIT |
                 GL_COLOR_BUFFER_BIT | GL_PIXEL_MODE_BIT);

    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_COLOR_MATERIAL);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, 1, 0, 1, 0, 1);

    GLint unpackAlignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &unpackAlignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);

    const Real32 pw = Real32(port->getPixelWidth());
    const Real32 ph = Real32(port->getPixelHeight());

    for(UInt32 i = 0; i < getImages().size(); ++i)
    {
        ImagePtr img = getImages(i);

        if(img == NullFC || img->getData() == NULL)
            continue;

        Pnt2f p = i < getPositions().size() ? getPositions(i) : Pnt2f(0.f, 0.f);

        // Pixels when either coordinate reaches 1, fractions otherwise.
        if(p[0] >= 1.f || p[1] >= 1.f)
        {
            p[0] /= pw;
            p[1] /= ph;
        }

        glRasterPos2f(p[0], p[1]);
        glDrawPixels(img->getWidth(), img->getHeight(), img->getPixelFormat(),
                     GL_UNSIGNED_BYTE, img->getData());
    }

    glPixelStorei(GL_UNPACK_ALIGNMENT, unpackAlignment);

    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();

    glPopAttrib();
}

OSG_END_NAMESPACE
