/// A shader parameter holding a Matrix value.
#ifndef _OSGSHADERPARAMETERMATRIX_H_
#define _OSGSHADERPARAMETERMATRIX_H_

#include <OpenSG/OSGShaderParameterMatrixBase.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterMatrix : public ShaderParameterMatrixBase
{
  private:
    typedef ShaderParameterMatrixBase Inherited;

  public:
    /// Marks the parameter changed when its value was edited.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterMatrix(void);
    ShaderParameterMatrix(const ShaderParameterMatrix &source);
    virtual ~ShaderParameterMatrix(void);

  private:
    friend class FieldContainer;
    friend class ShaderParameterMatrixBase;

    static void initMethod(void);

    void operator=(const ShaderParameterMatrix &source);
};

typedef ShaderParameterMatrix *ShaderParameterMatrixP;

OSG_END_NAMESPACE

#endif
