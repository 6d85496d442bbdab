/// A shader parameter holding a list of Matrix values.
#ifndef _OSGSHADERPARAMETERMMATRIX_H_
#define _OSGSHADERPARAMETERMMATRIX_H_

#include <OpenSG/OSGShaderParameterMMatrixBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMMatrix : public ShaderParameterMMatrixBase
{
  private:
    typedef ShaderParameterMMatrixBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMMatrix(void);
    ShaderParameterMMatrix(const ShaderParameterMMatrix &source);
    virtual ~ShaderParameterMMatrix(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMMatrixBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMMatrix &source);
};

typedef ShaderParameterMMatrix *ShaderParameterMMatrixP;

OSG_END_NAMESPACE

#endif
