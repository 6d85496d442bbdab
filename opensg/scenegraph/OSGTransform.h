/// Transform: a group whose children live in the coordinate system given by
/// its matrix (children's space to the parent's space).
#ifndef _OSGTRANSFORM_H_
#define _OSGTRANSFORM_H_

#include <OpenSG/OSGTransformBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGActorBase.h>

OSG_BEGIN_NAMESPACE

class Transform : public TransformBase
{
  private:
    typedef TransformBase Inherited;

  public:
    /// result := result * matrix.
    virtual void accumulateMatrix(Matrix &result);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // Action functors, registered in initMethod.
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    Action::ResultE intersectEnter(Action *action);
    Action::ResultE intersectLeave(Action *action);

    NewActionTypes::ResultE intersectActorEnter(ActorBase::FunctorArgumentType &funcArg);
    NewActionTypes::ResultE intersectActorLeave(ActorBase::FunctorArgumentType &funcArg);

  protected:
    Transform(void);
    Transform(const Transform &source);
    virtual ~Transform(void);

    /// The children's volume, moved into the parent's space.
    virtual void adjustVolume(Volume &volume);

    /// Registers the transform's action functors for type, a Transform or
    /// a subclass that draws and picks as one.
    static void registerFunctors(const FieldContainerType &type);

  private:
    friend class FieldContainer;
    friend class TransformBase;

    static void initMethod(void);

    void operator=(const Transform &source);
};

typedef Transform *TransformP;

OSG_END_NAMESPACE

#endif
