/// SpotLight: a point light limited to a cone around a direction.
#ifndef _OSGSPOTLIGHT_H_
#define _OSGSPOTLIGHT_H_

#include <OpenSG/OSGSpotLightBase.h>

OSG_BEGIN_NAMESPACE

class SpotLight : public SpotLightBase
{
  private:
    typedef SpotLightBase Inherited;

  public:
    static StatElemDesc<StatIntElem> statNSpotLights;

    /// Sets direction.
    void setSpotDirection(Real32 rX, Real32 rY, Real32 rZ)
    {
        _sfDirection.getValue().setValues(rX, rY, rZ);
    }
    /// The cut-off in degrees; spotCutOff holds radians.
    void setSpotCutOffDeg(Real32 angle) { _sfSpotCutOff.setValue(osgdegree2rad(angle)); }
    Real32 getSpotCutOffDeg(void) const { return osgrad2degree(_sfSpotCutOff.getValue()); }

    /// Adds direction, exponent and the cut-off (in degrees) to the chunk.
    virtual void makeChunk(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Counted as a spot light, then handled (and counted) as a point light.
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    SpotLight(void);
    SpotLight(const SpotLight &source);
    virtual ~SpotLight(void);

  private:
    friend class FieldContainer;
    friend class SpotLightBase;

    static void initMethod(void);

    void operator=(const SpotLight &source);
};

typedef SpotLight *SpotLightP;

OSG_END_NAMESPACE

#endif
