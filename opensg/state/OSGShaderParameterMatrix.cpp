#include <OpenSG/OSGShaderParameterMatrix.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMatrix::ShaderParameterMatrix(void) : Inherited()
{
    setTypeId(SHPTypeMatrix);
}

ShaderParameterMatrix::ShaderParameterMatrix(const ShaderParameterMatrix &source) : Inherited(source)
{
}

ShaderParameterMatrix::~ShaderParameterMatrix(void)
{
}

void ShaderParameterMatrix::initMethod(void)
{
}

void ShaderParameterMatrix::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMatrix::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMatrix NI" << std::endl;
}

OSG_END_NAMESPACE
