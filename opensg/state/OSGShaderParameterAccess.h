/// Name-based access to a list of shader parameters (an
/// MFShaderParameterPtr field): set adds a parameter of the requested class
/// or updates the one of that name, get reads it back, sub removes it.
///
/// The object keeps a reference to the field it was built on: it must not
/// outlive the field's container. The name map is rebuilt only when the
/// field's size changes; a parameter replaced or renamed in place with the
/// count unchanged leaves a stale map. None of the operations edits the
/// container that owns the field: callers mark that field changed.
#ifndef _OSGSHADERPARAMETERACCESS_H_
#define _OSGSHADERPARAMETERACCESS_H_

#include <OpenSG/OSGShaderParameter.h>
#include <OpenSG/OSGShaderParameterFields.h>

#include <map>
#include <string>

OSG_BEGIN_NAMESPACE

class ShaderParameterAccess
{
  public:
    ShaderParameterAccess(MFShaderParameterPtr &parameters);
    ~ShaderParameterAccess(void);

    /// Sets the value of the parameter name, which must be a ParameterType;
    /// a missing one is created (with one reference) and appended.
    template <class ParameterType, class ValueType>
    bool setParameter(const char *name, const ValueType &value);

    /// The same for the multi-value classes; value is a whole MField.
    template <class ParameterType, class ValueType>
    bool setMParameter(const char *name, const ValueType &value);

    template <class ParameterType, class ValueType>
    bool getParameter(const char *name, ValueType &value);

    template <class ParameterType, class ValueType>
    bool getMParameter(const char *name, ValueType &value);

    /// The parameter as ParameterType, NullFC if missing or of another class.
    template <class ParameterType>
    FCPtr<ShaderParameterPtr, ParameterType> getParameterFC(const char *name);

    /// Drops and removes the parameter; false if there is none.
    bool subParameter(const char *name);
    bool hasParameter(const char *name);

    /// Rebuilds the name map if the field's size changed since the last
    /// rebuild; with duplicate names the first one wins.
    void updateMap(void);

  private:
    typedef std::map<std::string, UInt32> ParameterMap;

    /// The index of name, -1 if missing.
    Int32 lookup(const char *name);

    /// The parameter name for reading, NullFC (with the getter's log line)
    /// when it is missing or of another class.
    template <class ParameterType>
    typename ParameterType::Ptr findForGet(const char *name);
    /// Appends a new parameter under name.
    void append(const char *name, const ShaderParameterPtr &parameter);

    MFShaderParameterPtr &_parameters;
    ParameterMap          _parametermap;
    UInt32                _mapsize;

    ShaderParameterAccess(const ShaderParameterAccess &);
    void operator=(const ShaderParameterAccess &);
};

template <class ParameterType, class ValueType>
bool ShaderParameterAccess::setParameter(const char *name, const ValueType &value)
{
    typedef typename ParameterType::Ptr ParamPtr;

    if(name == NULL)
        return false;

    Int32 index = lookup(name);
    if(index >= 0)
    {
        ParamPtr p = ParamPtr::dcast(_parameters[index]);
        if(p == NullFC)
        {
            FWARNING(("ShaderParameterAccess::setParameter : Parameter '%s' has wrong type!\n",
                      name));
            return false;
        }
        beginEditCP(p, ParameterType::ValueFieldMask);
        p->setValue(value);
        endEditCP(p, ParameterType::ValueFieldMask);
        return true;
    }

    ParamPtr p = ParameterType::create();
    addRefCP(p);
    beginEditCP(p);
    p->setName(name);
    p->setValue(value);
    endEditCP(p);
    append(name, p);
    return true;
}

template <class ParameterType, class ValueType>
bool ShaderParameterAccess::setMParameter(const char *name, const ValueType &value)
{
    typedef typename ParameterType::Ptr ParamPtr;

    if(name == NULL)
        return false;

    Int32 index = lookup(name);
    if(index >= 0)
    {
        ParamPtr p = ParamPtr::dcast(_parameters[index]);
        if(p == NullFC)
        {
            FWARNING(("ShaderParameterAccess::setMParameter : Parameter '%s' has wrong type!\n",
                      name));
            return false;
        }
        beginEditCP(p, ParameterType::ValueFieldMask);
        p->editMFValue()->setValues(value);
        endEditCP(p, ParameterType::ValueFieldMask);
        return true;
    }

    ParamPtr p = ParameterType::create();
    addRefCP(p);
    beginEditCP(p);
    p->setName(name);
    p->editMFValue()->setValues(value);
    endEditCP(p);
    append(name, p);
    return true;
}

template <class ParameterType>
typename ParameterType::Ptr ShaderParameterAccess::findForGet(const char *name)
{
    typedef typename ParameterType::Ptr ParamPtr;

    if(name == NULL)
        return ParamPtr();

    Int32 index = lookup(name);
    if(index < 0)
    {
        FINFO(("ShaderParameterAccess::getParameter : Parameter '%s' doesn't exist!\n", name));
        return ParamPtr();
    }

    ParamPtr p = ParamPtr::dcast(_parameters[index]);
    if(p == NullFC)
        FWARNING(("ShaderParameterAccess::getParameter : Parameter '%s' has wrong type!\n",
                  name));
    return p;
}

template <class ParameterType, class ValueType>
bool ShaderParameterAccess::getParameter(const char *name, ValueType &value)
{
    typename ParameterType::Ptr p = findForGet<ParameterType>(name);
    if(p == NullFC)
        return false;
    value = p->getValue();
    return true;
}

template <class ParameterType, class ValueType>
bool ShaderParameterAccess::getMParameter(const char *name, ValueType &value)
{
    typename ParameterType::Ptr p = findForGet<ParameterType>(name);
    if(p == NullFC)
        return false;
    value.setValues(*p->getMFValue());
    return true;
}

template <class ParameterType>
FCPtr<ShaderParameterPtr, ParameterType> ShaderParameterAccess::getParameterFC(const char *name)
{
    typedef FCPtr<ShaderParameterPtr, ParameterType> ParamPtr;

    if(name == NULL)
        return ParamPtr();

    Int32 index = lookup(name);
    if(index < 0)
        return ParamPtr();
    return ParamPtr::dcast(_parameters[index]);
}

OSG_END_NAMESPACE

#endif
