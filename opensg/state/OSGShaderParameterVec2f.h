/// A shader parameter holding a Vec2f value.
#ifndef _OSGSHADERPARAMETERVEC2F_H_
#define _OSGSHADERPARAMETERVEC2F_H_

#include <OpenSG/OSGShaderParameterVec2fBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterVec2f : public ShaderParameterVec2fBase
{
  private:
    typedef ShaderParameterVec2fBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterVec2f(void);
    ShaderParameterVec2f(const ShaderParameterVec2f &source);
    virtual ~ShaderParameterVec2f(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec2fBase;

    static void initMethod(void);

    void operator=(const ShaderParameterVec2f &source);
};

typedef ShaderParameterVec2f *ShaderParameterVec2fP;

OSG_END_NAMESPACE

#endif
