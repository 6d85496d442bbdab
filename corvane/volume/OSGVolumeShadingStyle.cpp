#include <OpenSG/OSGVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

VolumeShadingStyle::VolumeShadingStyle(void)
    : Inherited(), _shadingFunction(NULL), _changedFields(0)
{
}

VolumeShadingStyle::VolumeShadingStyle(const VolumeShadingStyle &source)
    : Inherited(source), _shadingFunction(NULL), _changedFields(0)
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
    _changedFields |= whichField;
    Inherited::changed(whichField, origin);
}

void VolumeShadingStyle::setShadingFunction(ShadingFunctions *shadingFunction)
{
    _shadingFunction = shadingFunction;
}

ShadingFunctions *VolumeShadingStyle::getShadingFunction(void)
{
    return _shadingFunction;
}

void VolumeShadingStyle::paramShading(VolumeNodeHandler *)
{
}

void VolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
