/// A shader parameter holding a string value.
#ifndef _OSGSHADERPARAMETERSTRING_H_
#define _OSGSHADERPARAMETERSTRING_H_

#include <OpenSG/OSGShaderParameterStringBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterString : public ShaderParameterStringBase
{
  private:
    typedef ShaderParameterStringBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterString(void);
    ShaderParameterString(const ShaderParameterString &source);
    virtual ~ShaderParameterString(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterStringBase;

    static void initMethod(void);

    void operator=(const ShaderParameterString &source);
};

typedef ShaderParameterString *ShaderParameterStringP;

OSG_END_NAMESPACE

#endif
