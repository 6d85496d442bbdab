#include <OpenSG/OSGShaderParameterChunk.h>

OSG_BEGIN_NAMESPACE

ShaderParameterChunk::ShaderParameterChunk(void)
    : Inherited(), _parameter_access(NULL), _cleared_parameters(false)
{
}

ShaderParameterChunk::ShaderParameterChunk(const ShaderParameterChunk &source)
    : Inherited(source), _parameter_access(NULL), _cleared_parameters(false)
{
}

ShaderParameterChunk::~ShaderParameterChunk(void)
{
    // plain memory of this aspect copy, not a counted reference
    delete _parameter_access;
}

void ShaderParameterChunk::initMethod(void)
{
}

void ShaderParameterChunk::onCreate(const ShaderParameterChunk *source)
{
    Inherited::onCreate(source);

    // subclasses may reach for the access object directly
    getParameterAccess();

    if(source == NULL)
        return;
    for(UInt32 i = 0; i < _mfParameters.size(); ++i)
        if(_mfParameters[i] != NullFC)
            addRefCP(_mfParameters[i]);
}

void ShaderParameterChunk::onDestroy(void)
{
    clearUniformParameters();
    Inherited::onDestroy();
}

ShaderParameterAccess *ShaderParameterChunk::getParameterAccess(void)
{
    if(_parameter_access == NULL)
        _parameter_access = new ShaderParameterAccess(_mfParameters);
    return _parameter_access;
}

bool ShaderParameterChunk::setUniformParameter(const char *name, bool value)
{
    return getParameterAccess()->setParameter<ShaderParameterBool>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, Int32 value)
{
    return getParameterAccess()->setParameter<ShaderParameterInt>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, Real32 value)
{
    return getParameterAccess()->setParameter<ShaderParameterReal>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec2f & value)
{
    return getParameterAccess()->setParameter<ShaderParameterVec2f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec3f & value)
{
    return getParameterAccess()->setParameter<ShaderParameterVec3f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec4f & value)
{
    return getParameterAccess()->setParameter<ShaderParameterVec4f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Matrix & value)
{
    return getParameterAccess()->setParameter<ShaderParameterMatrix>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFInt32 &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMInt>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFReal32 &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMReal>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec2f &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMVec2f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec3f &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMVec3f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec4f &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMVec4f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFMatrix &value)
{
    return getParameterAccess()->setMParameter<ShaderParameterMMatrix>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, bool &value)
{
    return getParameterAccess()->getParameter<ShaderParameterBool>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Int32 &value)
{
    return getParameterAccess()->getParameter<ShaderParameterInt>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Real32 &value)
{
    return getParameterAccess()->getParameter<ShaderParameterReal>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec2f &value)
{
    return getParameterAccess()->getParameter<ShaderParameterVec2f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec3f &value)
{
    return getParameterAccess()->getParameter<ShaderParameterVec3f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec4f &value)
{
    return getParameterAccess()->getParameter<ShaderParameterVec4f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Matrix &value)
{
    return getParameterAccess()->getParameter<ShaderParameterMatrix>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFInt32 &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMInt>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFReal32 &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMReal>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec2f &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMVec2f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec3f &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMVec3f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec4f &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMVec4f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFMatrix &value)
{
    return getParameterAccess()->getMParameter<ShaderParameterMMatrix>(name, value);
}

bool ShaderParameterChunk::subUniformParameter(const char *name)
{
    return getParameterAccess()->subParameter(name);
}

bool ShaderParameterChunk::hasUniformParameter(const char *name)
{
    return getParameterAccess()->hasParameter(name);
}

void ShaderParameterChunk::clearUniformParameters(void)
{
    MFShaderParameterPtr parameters;
    parameters.swap(_mfParameters);
    for(UInt32 i = 0; i < parameters.size(); ++i)
        if(parameters[i] != NullFC)
            subRefCP(parameters[i]);

    if(_parameter_access != NULL)
        _parameter_access->updateMap();
    _cleared_parameters = true;
}

void ShaderParameterChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterChunk NI" << std::endl;
}

OSG_END_NAMESPACE
