/// A shader parameter holding a list of Vec2f values.
#ifndef _OSGSHADERPARAMETERMVEC2F_H_
#define _OSGSHADERPARAMETERMVEC2F_H_

#include <OpenSG/OSGShaderParameterMVec2fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMVec2f : public ShaderParameterMVec2fBase
{
  private:
    typedef ShaderParameterMVec2fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMVec2f(void);
    ShaderParameterMVec2f(const ShaderParameterMVec2f &source);
    virtual ~ShaderParameterMVec2f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec2fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMVec2f &source);
};

typedef ShaderParameterMVec2f *ShaderParameterMVec2fP;

OSG_END_NAMESPACE

#endif
