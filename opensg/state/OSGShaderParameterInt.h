/// A shader parameter holding a Int32 value.
#ifndef _OSGSHADERPARAMETERINT_H_
#define _OSGSHADERPARAMETERINT_H_

#include <OpenSG/OSGShaderParameterIntBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterInt : public ShaderParameterIntBase
{
  private:
    typedef ShaderParameterIntBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterInt(void);
    ShaderParameterInt(const ShaderParameterInt &source);
    virtual ~ShaderParameterInt(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterIntBase;

    static void initMethod(void);

    void operator=(const ShaderParameterInt &source);
};

typedef ShaderParameterInt *ShaderParameterIntP;

OSG_END_NAMESPACE

#endif
