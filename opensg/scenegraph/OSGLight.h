/// Light: the abstract light source core. It lights the whole scene (or,
/// with local lights, its subtree) from its beacon's coordinate system; the
/// GL work is done by a LightChunk that makeChunk() keeps up to date.
#ifndef _OSGLIGHT_H_
#define _OSGLIGHT_H_

#include <OpenSG/OSGLightBase.h>
#include <OpenSG/OSGLightChunkFields.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

class Light : public LightBase
{
  private:
    typedef LightBase Inherited;

  public:
    /// Counted assignment.
    void setBeacon(const NodePtr &beacon);

    // Component forms of the colour setters; like the others they open no
    // edit of their own.
    using Inherited::setAmbient;
    using Inherited::setDiffuse;
    using Inherited::setSpecular;
    void setAmbient(Real32 rRed, Real32 rGreen, Real32 rBlue, Real32 rAlpha)
    {
        _sfAmbient.getValue().setValuesRGBA(rRed, rGreen, rBlue, rAlpha);
    }
    void setDiffuse(Real32 rRed, Real32 rGreen, Real32 rBlue, Real32 rAlpha)
    {
        _sfDiffuse.getValue().setValuesRGBA(rRed, rGreen, rBlue, rAlpha);
    }
    void setSpecular(Real32 rRed, Real32 rGreen, Real32 rBlue, Real32 rAlpha)
    {
        _sfSpecular.getValue().setValuesRGBA(rRed, rGreen, rBlue, rAlpha);
    }

    /// The chunk made by the last makeChunk() (NullFC before).
    LightChunkPtr getChunk(void) { return _pChunk; }
    /// Creates the chunk on first use and copies the colours into it;
    /// subclasses add position and direction.
    virtual void makeChunk(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // The parts of the action functors that all lights share; each concrete
    // light type registers its own functors, which count it and call these.
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    Light(void);
    Light(const Light &source);
    virtual ~Light(void);

    /// A copy shares the beacon and so holds a reference too.
    void onCreate(const Light *source = NULL);
    /// Releases beacon and chunk, once.
    virtual void onDestroy(void);

    LightChunkPtr _pChunk;

  private:
    friend class FieldContainer;
    friend class LightBase;

    static void initMethod(void);

    void operator=(const Light &source);
};

typedef Light *LightP;

OSG_END_NAMESPACE

#endif
