/// Test drawable: draws its rectangle with whatever state the material set
/// and records each drawPrimitives call.
#ifndef _OSGGEOMETRYTESTDRAWABLE_H_
#define _OSGGEOMETRYTESTDRAWABLE_H_

#include <OpenSG/OSGGeometryTestDrawableBase.h>

OSG_BEGIN_NAMESPACE

class GeometryTestDrawable : public GeometryTestDrawableBase
{
  private:
    typedef GeometryTestDrawableBase Inherited;

  public:
    UInt32  drawCalls;
    NodePtr lastNode;

    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    GeometryTestDrawable(void);
    GeometryTestDrawable(const GeometryTestDrawable &source);
    virtual ~GeometryTestDrawable(void);

    /// The rectangle, so that culling sees what is drawn.
    virtual void adjustVolume(Volume &volume);

  private:
    friend class FieldContainer;
    friend class GeometryTestDrawableBase;

    static void initMethod(void);

    void operator=(const GeometryTestDrawable &source);
};

OSG_END_NAMESPACE

#endif
