#include <OpenSG/OSGComposableVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle(void) : Inherited()
{
}

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source) : Inherited(source)
{
}

ComposableVolumeShadingStyle::~ComposableVolumeShadingStyle(void)
{
}

void ComposableVolumeShadingStyle::initMethod(void)
{
}

void ComposableVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ComposableVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ComposableVolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
