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

    using Inherited::setPosition;
    void setPosition(Real32 rX, Real32 rY, Real32 rZ)
    {
        _sfPosition.getValue().setValues(rX, rY, rZ);
    }
    /// The three attenuation factors at once.
    void setAttenuation(Real32 rConstant, Real32 rLinear, Real32 rQuadratic)
    {
        _sfConstantAttenuation.setValue(rConstant);
        _sfLinearAttenuation.setValue(rLinear);
        _sfQuadraticAttenuation.setValue(rQuadratic);
    }

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
