/// A shader parameter holding a list of Int32 values.
#ifndef _OSGSHADERPARAMETERMINT_H_
#define _OSGSHADERPARAMETERMINT_H_

#include <OpenSG/OSGShaderParameterMIntBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMInt : public ShaderParameterMIntBase
{
  private:
    typedef ShaderParameterMIntBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMInt(void);
    ShaderParameterMInt(const ShaderParameterMInt &source);
    virtual ~ShaderParameterMInt(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMIntBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMInt &source);
};

typedef ShaderParameterMInt *ShaderParameterMIntP;

OSG_END_NAMESPACE

#endif
