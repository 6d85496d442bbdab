/// A shader parameter holding a Real32 value.
#ifndef _OSGSHADERPARAMETERREAL_H_
#define _OSGSHADERPARAMETERREAL_H_

#include <OpenSG/OSGShaderParameterRealBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterReal : public ShaderParameterRealBase
{
  private:
    typedef ShaderParameterRealBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterReal(void);
    ShaderParameterReal(const ShaderParameterReal &source);
    virtual ~ShaderParameterReal(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterRealBase;

    static void initMethod(void);

    void operator=(const ShaderParameterReal &source);
};

typedef ShaderParameterReal *ShaderParameterRealP;

OSG_END_NAMESPACE

#endif
