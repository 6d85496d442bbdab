#ifndef _OSGLAYER_H_
#define _OSGLAYER_H_

#include <OpenSG/OSGLayerBase.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

/// A group core that masks its children per action and records the last pick.
class Layer : public LayerBase
{
  private:
    typedef LayerBase Inherited;

  public:
    /// Draw and render: the children that visible doesn't switch off and
    /// that pass the frustum test. Without a mask it behaves as a group.
    Action::ResultE draw(Action *action);
    /// Picking: the children that pickable doesn't switch off.
    Action::ResultE intersectEnter(Action *action);
    /// Records the ray parameter of the hit so far in hit, -1 without one.
    Action::ResultE intersectLeave(Action *action);

    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Layer(void);
    /// Copies the fields; the factory clones the prototype through it.
    Layer(const Layer &source);
    virtual ~Layer(void);

  private:
    friend class FieldContainer;
    friend class LayerBase;

    static void initMethod(void);

    void operator=(const Layer &source);
};

typedef Layer *LayerP;

OSG_END_NAMESPACE

#endif
