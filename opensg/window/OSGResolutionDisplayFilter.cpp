#include <OpenSG/OSGResolutionDisplayFilter.h>

#include <OpenSG/OSGDisplayFilterForeground.h>

OSG_BEGIN_NAMESPACE

ResolutionDisplayFilter::ResolutionDisplayFilter(void) : Inherited()
{
}

ResolutionDisplayFilter::ResolutionDisplayFilter(const ResolutionDisplayFilter &source)
    : Inherited(source)
{
}

ResolutionDisplayFilter::~ResolutionDisplayFilter(void)
{
}

void ResolutionDisplayFilter::initMethod(void)
{
}

void ResolutionDisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ResolutionDisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ResolutionDisplayFilter NI" << std::endl;
}

void ResolutionDisplayFilter::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    // Asked for in this order, so the reduced image is drawn before it is
    // grabbed and enlarged.
    DisplayFilterForeground::DisplayFilterGroup *down =
        fg->findReadbackGroup("ColorDisplayFilter");
    DisplayFilterForeground::DisplayFilterGroup *up =
        fg->findReadbackGroup("ResolutionDisplayFilter");

    Real32 d = osgMin(osgMax(getDownScale(), 0.f), 1.f);

    // Nothing can be enlarged back from no pixels: 0 keeps the image.
    if(d <= 0.f)
        d = 1.f;

    Matrix m;

    m.setScale(Vec3f(d, d, 1.f));
    beginEditCP(down->getTransform());
    down->getTransform()->setMatrix(m);
    endEditCP(down->getTransform());

    m.setScale(Vec3f(1.f / d, 1.f / d, 1.f));
    beginEditCP(up->getTransform());
    up->getTransform()->setMatrix(m);
    endEditCP(up->getTransform());
}

OSG_END_NAMESPACE
