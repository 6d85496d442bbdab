#include <OpenSG/OSGCommonSurfaceShaderMaterial.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

CommonSurfaceShaderMaterial::CommonSurfaceShaderMaterial(void) : Inherited()
{
}

CommonSurfaceShaderMaterial::CommonSurfaceShaderMaterial(const CommonSurfaceShaderMaterial &source) : Inherited(source)
{
}

CommonSurfaceShaderMaterial::~CommonSurfaceShaderMaterial(void)
{
}

void CommonSurfaceShaderMaterial::initMethod(void)
{
}

void CommonSurfaceShaderMaterial::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void CommonSurfaceShaderMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "Dump CommonSurfaceShaderMaterial NI" << std::endl;
}

OSG_END_NAMESPACE
