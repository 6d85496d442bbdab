#include <OpenSG/OSGShaderParameterMInt.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMInt::ShaderParameterMInt(void) : Inherited()
{
    setTypeId(SHPTypeMInt);
}

ShaderParameterMInt::ShaderParameterMInt(const ShaderParameterMInt &source) : Inherited(source)
{
}

ShaderParameterMInt::~ShaderParameterMInt(void)
{
}

void ShaderParameterMInt::initMethod(void)
{
}

void ShaderParameterMInt::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMInt::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMInt NI" << std::endl;
}

OSG_END_NAMESPACE
