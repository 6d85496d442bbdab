/// A shader parameter holding a list of Vec4f values.
#ifndef _OSGSHADERPARAMETERMVEC4F_H_
#define _OSGSHADERPARAMETERMVEC4F_H_

#include <OpenSG/OSGShaderParameterMVec4fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMVec4f : public ShaderParameterMVec4fBase
{
  private:
    typedef ShaderParameterMVec4fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMVec4f(void);
    ShaderParameterMVec4f(const ShaderParameterMVec4f &source);
    virtual ~ShaderParameterMVec4f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec4fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMVec4f &source);
};

typedef ShaderParameterMVec4f *ShaderParameterMVec4fP;

OSG_END_NAMESPACE

#endif
