/// PointLight: light from a point in all directions, attenuated.
#ifndef _OSGPOINTLIGHT_H_
#define _OSGPOINTLIGHT_H_

#include <OpenSG/OSGPointLightBase.h>
#include <OpenSG/OSGStatElemTypes.h>

OSG_BEGIN_NAMESPACE

class PointLight : public PointLightBase
{
  private:
    typedef PointLightBase Inherited;

  public:
    static StatElemDesc<StatIntElem> statNPointLights;

    /// Chunk position (position, 1) and the attenuations.
    virtual void makeChunk(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    PointLight(void);
    PointLight(const PointLight &source);
    virtual ~PointLight(void);

  private:
    friend class FieldContainer;
    friend class PointLightBase;

    static void initMethod(void);

    void operator=(const PointLight &source);
};

typedef PointLight *PointLightP;

OSG_END_NAMESPACE

#endif
