#ifndef _OSGCOMMONSURFACESHADERMATERIAL_H_
#define _OSGCOMMONSURFACESHADERMATERIAL_H_

#include <OpenSG/OSGCommonSurfaceShaderMaterialBase.h>

OSG_BEGIN_NAMESPACE

/// A chunk material that carries the parameters of a common surface shader.
class CommonSurfaceShaderMaterial : public CommonSurfaceShaderMaterialBase
{
  private:
    typedef CommonSurfaceShaderMaterialBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    CommonSurfaceShaderMaterial(void);
    /// Copies the fields; the factory clones the prototype through it.
    CommonSurfaceShaderMaterial(const CommonSurfaceShaderMaterial &source);
    virtual ~CommonSurfaceShaderMaterial(void);

  private:
    friend class FieldContainer;
    friend class CommonSurfaceShaderMaterialBase;

    static void initMethod(void);

    void operator=(const CommonSurfaceShaderMaterial &source);
};

typedef CommonSurfaceShaderMaterial *CommonSurfaceShaderMaterialP;

OSG_END_NAMESPACE

#endif
