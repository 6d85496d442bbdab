#include <OpenSG/OSGDropletFlowViewport.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

DropletFlowViewport::DropletFlowViewport(void) : Inherited()
{
}

DropletFlowViewport::DropletFlowViewport(const DropletFlowViewport &source) : Inherited(source)
{
}

DropletFlowViewport::~DropletFlowViewport(void)
{
}

void DropletFlowViewport::initMethod(void)
{
}

void DropletFlowViewport::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DropletFlowViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DropletFlowViewport NI" << std::endl;
}

OSG_END_NAMESPACE
