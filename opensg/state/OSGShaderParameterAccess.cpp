#include <OpenSG/OSGShaderParameterAccess.h>

OSG_BEGIN_NAMESPACE

ShaderParameterAccess::ShaderParameterAccess(MFShaderParameterPtr &parameters)
    : _parameters(parameters), _parametermap(), _mapsize(0)
{
}

ShaderParameterAccess::~ShaderParameterAccess(void)
{
}

void ShaderParameterAccess::updateMap(void)
{
    if(_mapsize == _parameters.size())
        return;

    _parametermap.clear();
    for(UInt32 i = 0; i < _parameters.size(); ++i)
    {
        ShaderParameterPtr p = _parameters[i];
        if(p != NullFC)
            _parametermap.insert(ParameterMap::value_type(p->getName(), i));
    }
    _mapsize = _parameters.size();
}

Int32 ShaderParameterAccess::lookup(const char *name)
{
    updateMap();
    ParameterMap::const_iterator it = _parametermap.find(name);
    if(it == _parametermap.end() || it->second >= _parameters.size())
        return -1;
    return Int32(it->second);
}

void ShaderParameterAccess::append(const char *name, const ShaderParameterPtr &parameter)
{
    _parameters.push_back(parameter);
    _parametermap.insert(ParameterMap::value_type(name, _parameters.size() - 1));
    _mapsize = _parameters.size();
}

bool ShaderParameterAccess::subParameter(const char *name)
{
    if(name == NULL)
        return false;

    Int32 index = lookup(name);
    if(index < 0)
        return false;

    ShaderParameterPtr p = _parameters[index];
    _parameters.erase(_parameters.begin() + index);
    _parametermap.erase(name);
    subRefCP(p);
    updateMap();
    return true;
}

bool ShaderParameterAccess::hasParameter(const char *name)
{
    if(name == NULL)
        return false;
    return lookup(name) >= 0;
}

OSG_END_NAMESPACE
