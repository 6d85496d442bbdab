/// MaterialGroup: puts its material over the drawables below it. The
/// outermost MaterialGroup on the path wins.
#ifndef _OSGMATERIALGROUP_H_
#define _OSGMATERIALGROUP_H_

#include <OpenSG/OSGMaterialGroupBase.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

class MaterialGroup : public MaterialGroupBase
{
  private:
    typedef MaterialGroupBase Inherited;

  public:
    /// Counted assignment: adds a reference to the new material, releases
    /// the old one.
    void setMaterial(const MaterialPtr &value);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    MaterialGroup(void);
    MaterialGroup(const MaterialGroup &source);
    virtual ~MaterialGroup(void);

    /// A copy shares the material and so holds a reference too.
    void onCreate(const MaterialGroup *source = NULL);
    /// Releases the material, once.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class MaterialGroupBase;

    static void initMethod(void);

    void operator=(const MaterialGroup &source);
};

typedef MaterialGroup *MaterialGroupP;

OSG_END_NAMESPACE

#endif
