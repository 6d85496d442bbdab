#include <OpenSG/OSGShaderParameterMVec3f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMVec3f::ShaderParameterMVec3f(void) : Inherited()
{
    setTypeId(SHPTypeMVec3f);
}

ShaderParameterMVec3f::ShaderParameterMVec3f(const ShaderParameterMVec3f &source) : Inherited(source)
{
}

ShaderParameterMVec3f::~ShaderParameterMVec3f(void)
{
}

void ShaderParameterMVec3f::initMethod(void)
{
}

void ShaderParameterMVec3f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec3f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec3f NI" << std::endl;
}

OSG_END_NAMESPACE
