#include <OpenSG/OSGDistortionDisplayFilter.h>

#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGGeoPositions3f.h>

OSG_BEGIN_NAMESPACE

DistortionDisplayFilter::DistortionDisplayFilter(void) : Inherited()
{
}

DistortionDisplayFilter::DistortionDisplayFilter(const DistortionDisplayFilter &source)
    : Inherited(source)
{
}

DistortionDisplayFilter::~DistortionDisplayFilter(void)
{
}

void DistortionDisplayFilter::initMethod(void)
{
}

void DistortionDisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DistortionDisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DistortionDisplayFilter NI" << std::endl;
}

void DistortionDisplayFilter::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    DisplayFilterForeground::DisplayFilterGroup *group =
        fg->findReadbackGroup("ColorDisplayFilter");

    if(getColumns() < 2 || getRows() < 2)
    {
        SWARNING << "DistortionDisplayFilter columns or rows < 2" << std::endl;
        return;
    }

    if(!getPositions().empty() && getPositions().size() != size_t(getColumns()) * getRows())
    {
        SWARNING << "DistortionDisplayFilter wrong number of positions" << std::endl;
        return;
    }

    group->createGrid(getColumns(), getRows());

    if(getPositions().empty())
        return;

    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(group->getGeometry()->getPositions());

    if(pos == NullFC)
        return;

    beginEditCP(pos);
    for(UInt32 i = 0; i < getPositions().size(); ++i)
        pos->getField()[i] = Pnt3f(getPositions(i)[0], getPositions(i)[1], 0.f);
    endEditCP(pos);
}

OSG_END_NAMESPACE
