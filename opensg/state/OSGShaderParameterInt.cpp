#include <OpenSG/OSGShaderParameterInt.h>

OSG_BEGIN_NAMESPACE

ShaderParameterInt::ShaderParameterInt(void) : Inherited()
{
    setTypeId(SHPTypeInt);
}

ShaderParameterInt::ShaderParameterInt(const ShaderParameterInt &source) : Inherited(source)
{
}

ShaderParameterInt::~ShaderParameterInt(void)
{
}

void ShaderParameterInt::initMethod(void)
{
}

void ShaderParameterInt::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterInt::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterInt NI" << std::endl;
}

OSG_END_NAMESPACE
