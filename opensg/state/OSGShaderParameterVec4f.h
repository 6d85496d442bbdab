/// A shader parameter holding a Vec4f value.
#ifndef _OSGSHADERPARAMETERVEC4F_H_
#define _OSGSHADERPARAMETERVEC4F_H_

#include <OpenSG/OSGShaderParameterVec4fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterVec4f : public ShaderParameterVec4fBase
{
  private:
    typedef ShaderParameterVec4fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterVec4f(void);
    ShaderParameterVec4f(const ShaderParameterVec4f &source);
    virtual ~ShaderParameterVec4f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec4fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterVec4f &source);
};

typedef ShaderParameterVec4f *ShaderParameterVec4fP;

OSG_END_NAMESPACE

#endif
