#include <OpenSG/OSGShaderParameterVec4f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterVec4f::ShaderParameterVec4f(void) : Inherited()
{
    setTypeId(SHPTypeVec4f);
}

ShaderParameterVec4f::ShaderParameterVec4f(const ShaderParameterVec4f &source) : Inherited(source)
{
}

ShaderParameterVec4f::~ShaderParameterVec4f(void)
{
}

void ShaderParameterVec4f::initMethod(void)
{
}

void ShaderParameterVec4f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec4f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec4f NI" << std::endl;
}

OSG_END_NAMESPACE
