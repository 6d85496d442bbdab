#include <OpenSG/OSGDisplayFilter.h>

OSG_BEGIN_NAMESPACE

DisplayFilter::DisplayFilter(void) : Inherited(), _changed(0)
{
}

DisplayFilter::DisplayFilter(const DisplayFilter &source) : Inherited(source), _changed(0)
{
}

DisplayFilter::~DisplayFilter(void)
{
}

void DisplayFilter::initMethod(void)
{
}

void DisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    ++_changed;

    Inherited::changed(whichField, origin);
}

void DisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "enabled = " << getEnabled() << std::endl;
}

void DisplayFilter::updateFilter(Viewport *)
{
}

UInt32 DisplayFilter::getChanged(void) const
{
    return _changed;
}

OSG_END_NAMESPACE
