#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

SortedPrimitives::SortedPrimitives(void) : Inherited()
{
}

SortedPrimitives::SortedPrimitives(const SortedPrimitives &source) : Inherited(source)
{
}

SortedPrimitives::~SortedPrimitives(void)
{
}

void SortedPrimitives::initMethod(void)
{
}

void SortedPrimitives::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SortedPrimitives::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SortedPrimitives NI" << std::endl;
}

OSG_END_NAMESPACE
