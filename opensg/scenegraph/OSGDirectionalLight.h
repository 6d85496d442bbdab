/// DirectionalLight: light from infinitely far away along a direction.
#ifndef _OSGDIRECTIONALLIGHT_H_
#define _OSGDIRECTIONALLIGHT_H_

#include <OpenSG/OSGDirectionalLightBase.h>
#include <OpenSG/OSGStatElemTypes.h>

OSG_BEGIN_NAMESPACE

class DirectionalLight : public DirectionalLightBase
{
  private:
    typedef DirectionalLightBase Inherited;

  public:
    static StatElemDesc<StatIntElem> statNDirectionalLights;

    using Inherited::setDirection;
    void setDirection(Real32 rX, Real32 rY, Real32 rZ)
    {
        _sfDirection.getValue().setValues(rX, rY, rZ);
    }

    /// Chunk position (direction, 0).
    virtual void makeChunk(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    DirectionalLight(void);
    DirectionalLight(const DirectionalLight &source);
    virtual ~DirectionalLight(void);

  private:
    friend class FieldContainer;
    friend class DirectionalLightBase;

    static void initMethod(void);

    void operator=(const DirectionalLight &source);
};

typedef DirectionalLight *DirectionalLightP;

OSG_END_NAMESPACE

#endif
