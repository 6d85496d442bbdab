/// A shader parameter holding a bool value.
#ifndef _OSGSHADERPARAMETERBOOL_H_
#define _OSGSHADERPARAMETERBOOL_H_

#include <OpenSG/OSGShaderParameterBoolBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterBool : public ShaderParameterBoolBase
{
  private:
    typedef ShaderParameterBoolBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterBool(void);
    ShaderParameterBool(const ShaderParameterBool &source);
    virtual ~ShaderParameterBool(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterBoolBase;

    static void initMethod(void);

    void operator=(const ShaderParameterBool &source);
};

typedef ShaderParameterBool *ShaderParameterBoolP;

OSG_END_NAMESPACE

#endif
