#include <OpenSG/OSGVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

VolumeShadingStyle::VolumeShadingStyle(void) : Inherited()
{
}

VolumeShadingStyle::VolumeShadingStyle(const VolumeShadingStyle &source) : Inherited(source)
{
}

VolumeShadingStyle::~VolumeShadingStyle(void)
{
}

void VolumeShadingStyle::initMethod(void)
{
}

void VolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void VolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
