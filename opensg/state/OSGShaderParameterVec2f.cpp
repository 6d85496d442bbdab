#include <OpenSG/OSGShaderParameterVec2f.h>

OSG_BEGIN_NAMESPACE

ShaderParameterVec2f::ShaderParameterVec2f(void) : Inherited()
{
    setTypeId(SHPTypeVec2f);
}

ShaderParameterVec2f::ShaderParameterVec2f(const ShaderParameterVec2f &source) : Inherited(source)
{
}

ShaderParameterVec2f::~ShaderParameterVec2f(void)
{
}

void ShaderParameterVec2f::initMethod(void)
{
}

void ShaderParameterVec2f::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec2f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec2f NI" << std::endl;
}

OSG_END_NAMESPACE
