#include <OpenSG/OSGShaderParameterMVec4f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMVec4f::ShaderParameterMVec4f(void) : Inherited()
{
    setTypeId(SHPTypeMVec4f);
}

ShaderParameterMVec4f::ShaderParameterMVec4f(const ShaderParameterMVec4f &source) : Inherited(source)
{
}

ShaderParameterMVec4f::~ShaderParameterMVec4f(void)
{
}

void ShaderParameterMVec4f::initMethod(void)
{
}

void ShaderParameterMVec4f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec4f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec4f NI" << std::endl;
}

OSG_END_NAMESPACE
