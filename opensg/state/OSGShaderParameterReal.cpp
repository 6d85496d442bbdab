#include <OpenSG/OSGShaderParameterReal.h>

OSG_BEGIN_NAMESPACE

ShaderParameterReal::ShaderParameterReal(void) : Inherited()
{
    setTypeId(SHPTypeReal);
}

ShaderParameterReal::ShaderParameterReal(const ShaderParameterReal &source) : Inherited(source)
{
}

ShaderParameterReal::~ShaderParameterReal(void)
{
}

void ShaderParameterReal::initMethod(void)
{
}

void ShaderParameterReal::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterReal::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterReal NI" << std::endl;
}

OSG_END_NAMESPACE
