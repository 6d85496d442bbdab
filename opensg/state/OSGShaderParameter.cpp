#include <OpenSG/OSGShaderParameter.h>

OSG_BEGIN_NAMESPACE

ShaderParameter::ShaderParameter(void)
    : Inherited(), _changed(false), _typeid(SHPTypeUnknown), _location(-2), _flags(SHPFlagNone)
{
}

ShaderParameter::ShaderParameter(const ShaderParameter &source)
    : Inherited(source),
      _changed(false),
      _typeid(source._typeid),
      _location(-2),
      _flags(source._flags)
{
}

ShaderParameter::~ShaderParameter(void)
{
}

void ShaderParameter::initMethod(void)
{
}

void ShaderParameter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameter NI" << std::endl;
}

OSG_END_NAMESPACE
