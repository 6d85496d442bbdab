#include <OpenSG/OSGShaderParameterString.h>

OSG_BEGIN_NAMESPACE

ShaderParameterString::ShaderParameterString(void) : Inherited()
{
    setTypeId(SHPTypeString);
}

ShaderParameterString::ShaderParameterString(const ShaderParameterString &source) : Inherited(source)
{
}

ShaderParameterString::~ShaderParameterString(void)
{
}

void ShaderParameterString::initMethod(void)
{
}

void ShaderParameterString::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterString::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterString NI" << std::endl;
}

OSG_END_NAMESPACE
