/// A shader parameter holding a Vec3f value.
#ifndef _OSGSHADERPARAMETERVEC3F_H_
#define _OSGSHADERPARAMETERVEC3F_H_

#include <OpenSG/OSGShaderParameterVec3fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterVec3f : public ShaderParameterVec3fBase
{
  private:
    typedef ShaderParameterVec3fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterVec3f(void);
    ShaderParameterVec3f(const ShaderParameterVec3f &source);
    virtual ~ShaderParameterVec3f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec3fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterVec3f &source);
};

typedef ShaderParameterVec3f *ShaderParameterVec3fP;

OSG_END_NAMESPACE

#endif
