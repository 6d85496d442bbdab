#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

NurbsCurve::NurbsCurve(void) : Inherited()
{
}

NurbsCurve::NurbsCurve(const NurbsCurve &source) : Inherited(source)
{
}

NurbsCurve::~NurbsCurve(void)
{
}

void NurbsCurve::initMethod(void)
{
}

void NurbsCurve::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NurbsCurve::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsCurve NI" << std::endl;
}

OSG_END_NAMESPACE
