/// What a drawable looks like: the state(s) it is drawn with, whether it is
/// transparent, and the sort key that orders it within a render pass.
///
/// Every change of a material rebuilds its state (changed calls
/// rebuildState), so the render action's view stays current; a material that
/// was never edited has no state yet (getState() is NullFC).
#ifndef _OSGMATERIAL_H_
#define _OSGMATERIAL_H_

#include <OpenSG/OSGMaterialBase.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGTypedFunctors.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Geometry;

class Material : public MaterialBase
{
  private:
    typedef MaterialBase Inherited;

  public:
    /// Draws one object: ResultE call(DrawActionBase *action).
    typedef TypedFunctor1Base<Action::ResultE, PtrCallArg<DrawActionBase> > DrawFunctor;

    /// A sort key that leaves the material out of state sorting.
    static constexpr Int32 NoStateSorting = 0x7fffffff;

    enum
    {
        TransparencyAutoDetection    = 0,
        TransparencyForceTransparent = 1,
        TransparencyForceOpaque      = 2
    };

    // --- the material's own virtuals, in OpenSG's slot order -----------------

    /// Activates a fresh state, calls func, deactivates.
    virtual void draw(DrawFunctor &func, DrawActionBase *action) = 0;
    virtual void draw(Geometry *geo, DrawActionBase *action) = 0;

    /// A new state with the material's chunks; the caller owns it.
    virtual StatePtr makeState(void) = 0;
    /// Refills the material's own state from its chunks.
    virtual void rebuildState(void) = 0;
    /// The material's own state (pass index), NullFC before the first
    /// rebuild.
    virtual StatePtr getState(UInt32 index = 0);

    virtual bool isMultiPass(void) const;
    virtual UInt32 getNPasses(void) const;

    virtual bool isTransparent(void) const = 0;

    /// The sort key the render action uses: the sortKey field.
    virtual Int32 getRealSortKey(void) const;

    virtual bool operator<(const Material &other) const;
    virtual bool operator==(const Material &other) const;
    virtual bool operator!=(const Material &other) const;

    /// Rebuilds the state, whatever changed.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Material(void);
    /// A copy starts without a state of its own.
    Material(const Material &source);
    virtual ~Material(void);

    /// Drops the reference of the own state.
    virtual void onDestroy(void);

    StatePtr _pState;

  private:
    friend class FieldContainer;
    friend class MaterialBase;

    static void initMethod(void);

    void operator=(const Material &source);
};

typedef Material *MaterialP;

/// The null material pointer.
extern const MaterialPtr NullMaterial;

OSG_END_NAMESPACE

#endif
