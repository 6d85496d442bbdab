/// A shader parameter holding a list of Vec3f values.
#ifndef _OSGSHADERPARAMETERMVEC3F_H_
#define _OSGSHADERPARAMETERMVEC3F_H_

#include <OpenSG/OSGShaderParameterMVec3fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMVec3f : public ShaderParameterMVec3fBase
{
  private:
    typedef ShaderParameterMVec3fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMVec3f(void);
    ShaderParameterMVec3f(const ShaderParameterMVec3f &source);
    virtual ~ShaderParameterMVec3f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec3fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMVec3f &source);
};

typedef ShaderParameterMVec3f *ShaderParameterMVec3fP;

OSG_END_NAMESPACE

#endif
