/// A drawable with a material. Its four action handlers are what concrete
/// drawables register for the draw and render actions: they hand a functor
/// bound to the virtual drawPrimitives to the material (drawn at once) or
/// to the render action (queued and drawn in its draw phase).
#ifndef _OSGMATERIALDRAWABLE_H_
#define _OSGMATERIALDRAWABLE_H_

#include <OpenSG/OSGMaterialDrawableBase.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

class MaterialDrawable : public MaterialDrawableBase
{
  private:
    typedef MaterialDrawableBase Inherited;

  public:
    /// Counted assignment: the old material loses a reference, the new one
    /// gains one.
    void setMaterial(const MaterialPtr &value);

    /// Draws the primitives with the state the material has set up. The
    /// base version only warns: every drawable overrides it.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    Action::ResultE renderActionEnterHandler(Action *action);
    Action::ResultE renderActionLeaveHandler(Action *action);
    Action::ResultE drawActionEnterHandler(Action *action);
    Action::ResultE drawActionLeaveHandler(Action *action);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    MaterialDrawable(void);
    MaterialDrawable(const MaterialDrawable &source);
    virtual ~MaterialDrawable(void);

  private:
    friend class FieldContainer;
    friend class MaterialDrawableBase;

    static void initMethod(void);

    void operator=(const MaterialDrawable &source);
};

typedef MaterialDrawable *MaterialDrawableP;

OSG_END_NAMESPACE

#endif
