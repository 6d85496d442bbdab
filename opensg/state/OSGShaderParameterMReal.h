/// A shader parameter holding a list of Real32 values.
#ifndef _OSGSHADERPARAMETERMREAL_H_
#define _OSGSHADERPARAMETERMREAL_H_

#include <OpenSG/OSGShaderParameterMRealBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMReal : public ShaderParameterMRealBase
{
  private:
    typedef ShaderParameterMRealBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMReal(void);
    ShaderParameterMReal(const ShaderParameterMReal &source);
    virtual ~ShaderParameterMReal(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMRealBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMReal &source);
};

typedef ShaderParameterMReal *ShaderParameterMRealP;

OSG_END_NAMESPACE

#endif
