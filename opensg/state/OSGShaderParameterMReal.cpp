#include <OpenSG/OSGShaderParameterMReal.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMReal::ShaderParameterMReal(void) : Inherited()
{
    setTypeId(SHPTypeMReal);
}

ShaderParameterMReal::ShaderParameterMReal(const ShaderParameterMReal &source) : Inherited(source)
{
}

ShaderParameterMReal::~ShaderParameterMReal(void)
{
}

void ShaderParameterMReal::initMethod(void)
{
}

void ShaderParameterMReal::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMReal::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMReal NI" << std::endl;
}

OSG_END_NAMESPACE
