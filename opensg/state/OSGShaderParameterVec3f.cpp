#include <OpenSG/OSGShaderParameterVec3f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterVec3f::ShaderParameterVec3f(void) : Inherited()
{
    setTypeId(SHPTypeVec3f);
}

ShaderParameterVec3f::ShaderParameterVec3f(const ShaderParameterVec3f &source) : Inherited(source)
{
}

ShaderParameterVec3f::~ShaderParameterVec3f(void)
{
}

void ShaderParameterVec3f::initMethod(void)
{
}

void ShaderParameterVec3f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec3f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec3f NI" << std::endl;
}

OSG_END_NAMESPACE
