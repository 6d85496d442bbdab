#include <OpenSG/OSGGrabForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

GrabForeground::GrabForeground(void) : Inherited()
{
    // A grab costs a pipeline stall: nothing is read until asked for.
    setActive(false);
}

GrabForeground::GrabForeground(const GrabForeground &source) : Inherited(source)
{
}

GrabForeground::~GrabForeground(void)
{
}

void GrabForeground::initMethod(void)
{
}

void GrabForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void GrabForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump GrabForeground NI" << std::endl;
}

void GrabForeground::draw(DrawActionBase *, Viewport *port)
{
    if(!getActive())
        return;

    ImagePtr img = getImage();

    if(img == NullFC || port == NULL)
        return;

    Int32 w = osgMax(2, port->getPixelWidth());
    Int32 h = osgMax(2, port->getPixelHeight());

    if(img->getWidth() <= 1 || img->getHeight() <= 1 ||
       (getAutoResize() && (img->getWidth() != w || img->getHeight() != h)))
    {
        img->set(img->getPixelFormat(), w, h);
    }

    bool rowLength = false;

    if(!getAutoResize())
    {
        w = osgMin(Int32(img->getWidth()), port->getPixelWidth());
        h = osgMin(Int32(img->getHeight()), port->getPixelHeight());

        if(img->getWidth() != port->getPixelWidth())
        {
            glPixelStorei(GL_PACK_ROW_LENGTH, img->getWidth());
            rowLength = true;
        }
    }

    if(img->getData() == NULL || w <= 0 || h <= 0)
        return;

    glReadPixels(port->getPixelLeft(), port->getPixelBottom(), w, h, img->getPixelFormat(),
                 img->getDataType(), img->editData());

    if(rowLength)
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
}

OSG_END_NAMESPACE
