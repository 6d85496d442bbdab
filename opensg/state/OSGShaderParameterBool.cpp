#include <OpenSG/OSGShaderParameterBool.h>

OSG_BEGIN_NAMESPACE

ShaderParameterBool::ShaderParameterBool(void) : Inherited()
{
    setTypeId(SHPTypeBool);
}

ShaderParameterBool::ShaderParameterBool(const ShaderParameterBool &source) : Inherited(source)
{
}

ShaderParameterBool::~ShaderParameterBool(void)
{
}

void ShaderParameterBool::initMethod(void)
{
}

void ShaderParameterBool::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ValueFieldMask)
        setChanged();
    Inherited::changed(whichField, origin);
}

void ShaderParameterBool::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterBool NI" << std::endl;
}

OSG_END_NAMESPACE
