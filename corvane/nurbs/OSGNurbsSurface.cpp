#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

NurbsSurface::NurbsSurface(void) : Inherited()
{
}

NurbsSurface::NurbsSurface(const NurbsSurface &source) : Inherited(source)
{
}

NurbsSurface::~NurbsSurface(void)
{
}

void NurbsSurface::initMethod(void)
{
}

void NurbsSurface::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NurbsSurface::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsSurface NI" << std::endl;
}

OSG_END_NAMESPACE
