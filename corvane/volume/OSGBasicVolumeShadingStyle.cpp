#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

BasicVolumeShadingStyle::BasicVolumeShadingStyle(void) : Inherited()
{
}

BasicVolumeShadingStyle::BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source) : Inherited(source)
{
}

BasicVolumeShadingStyle::~BasicVolumeShadingStyle(void)
{
}

void BasicVolumeShadingStyle::initMethod(void)
{
}

void BasicVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void BasicVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump BasicVolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
