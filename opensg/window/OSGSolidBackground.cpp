#include <OpenSG/OSGSolidBackground.h>

#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

SolidBackground::SolidBackground(void) : Inherited()
{
}

SolidBackground::SolidBackground(const SolidBackground &source) : Inherited(source)
{
}

SolidBackground::~SolidBackground(void)
{
}

void SolidBackground::initMethod(void)
{
}

void SolidBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SolidBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SolidBackground NI" << std::endl;
}

void SolidBackground::clear(DrawActionBase *, Viewport *)
{
    GLbitfield mask = 0;

    if(getClearColor())
    {
        const Color3f &c = getColor();

        mask |= GL_COLOR_BUFFER_BIT;
        glClearColor(c[0], c[1], c[2], getAlpha());
    }

    if(getClearDepth())
    {
        mask |= GL_DEPTH_BUFFER_BIT;
        glClearDepth(getDepth());
    }

    if(getClearStencilBit() >= 0)
    {
        mask |= GL_STENCIL_BUFFER_BIT;
        glClearStencil(getClearStencilBit());
    }

    if(mask != 0)
        glClear(mask);
}

OSG_END_NAMESPACE
