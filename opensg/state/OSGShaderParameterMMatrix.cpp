#include <OpenSG/OSGShaderParameterMMatrix.h>

OSG_BEGIN_NAMESPACE

ShaderParameterMMatrix::ShaderParameterMMatrix(void) : Inherited()
{
    setTypeId(SHPTypeMMatrix);
}

ShaderParameterMMatrix::ShaderParameterMMatrix(const ShaderParameterMMatrix &source) : Inherited(source)
{
}

ShaderParameterMMatrix::~ShaderParameterMMatrix(void)
{
}

void ShaderParameterMMatrix::initMethod(void)
{
}

void ShaderParameterMMatrix::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterMMatrix::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMMatrix NI" << std::endl;
}

OSG_END_NAMESPACE
