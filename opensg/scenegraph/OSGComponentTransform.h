/// ComponentTransform: a Transform whose matrix is made from five
/// components, translation T, centre C, rotation R, scale orientation SO and
/// scale S, as T * C * R * SO * S * SO^-1 * C^-1. Editing a component
/// rebuilds the matrix; editing only the matrix decomposes it back into
/// the components. Drawing, culling and picking are the Transform's.
#ifndef _OSGCOMPONENTTRANSFORM_H_
#define _OSGCOMPONENTTRANSFORM_H_

#include <OpenSG/OSGComponentTransformBase.h>

OSG_BEGIN_NAMESPACE

class ComponentTransform : public ComponentTransformBase
{
  private:
    typedef ComponentTransformBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ComponentTransform(void);
    ComponentTransform(const ComponentTransform &source);
    virtual ~ComponentTransform(void);

  private:
    friend class FieldContainer;
    friend class ComponentTransformBase;

    static void initMethod(void);

    void operator=(const ComponentTransform &source);
};

typedef ComponentTransform *ComponentTransformP;

OSG_END_NAMESPACE

#endif
