#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

NurbsTrimmingLoop::NurbsTrimmingLoop(void) : Inherited()
{
}

NurbsTrimmingLoop::NurbsTrimmingLoop(const NurbsTrimmingLoop &source) : Inherited(source)
{
}

NurbsTrimmingLoop::~NurbsTrimmingLoop(void)
{
}

void NurbsTrimmingLoop::initMethod(void)
{
}

void NurbsTrimmingLoop::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NurbsTrimmingLoop::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsTrimmingLoop NI" << std::endl;
}

OSG_END_NAMESPACE
