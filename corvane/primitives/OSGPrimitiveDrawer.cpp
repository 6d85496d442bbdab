#include <OpenSG/OSGPrimitiveDrawer.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

PrimitiveDrawer::PrimitiveDrawer(void) : Inherited()
{
}

PrimitiveDrawer::PrimitiveDrawer(const PrimitiveDrawer &source) : Inherited(source)
{
}

PrimitiveDrawer::~PrimitiveDrawer(void)
{
}

void PrimitiveDrawer::initMethod(void)
{
}

void PrimitiveDrawer::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PrimitiveDrawer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PrimitiveDrawer NI" << std::endl;
}

OSG_END_NAMESPACE
