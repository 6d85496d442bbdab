#include <OpenSG/OSGShaderParameterMVec2f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMVec2f::ShaderParameterMVec2f(void) : Inherited()
{
    setTypeId(SHPTypeMVec2f);
}

ShaderParameterMVec2f::ShaderParameterMVec2f(const ShaderParameterMVec2f &source) : Inherited(source)
{
}

ShaderParameterMVec2f::~ShaderParameterMVec2f(void)
{
}

void ShaderParameterMVec2f::initMethod(void)
{
}

void ShaderParameterMVec2f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec2f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec2f NI" << std::endl;
}

OSG_END_NAMESPACE
