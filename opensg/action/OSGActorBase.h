/// ActorBase and BasicActorBase: the roots of the actor classes. Only the
/// registries of the actors matter here; nothing runs actor traversals.
#ifndef _OSGACTORBASE_H_
#define _OSGACTORBASE_H_

#include <OpenSG/OSGNewActionTypes.h>

OSG_BEGIN_NAMESPACE

class ActorBase
{
  public:
    typedef NewActionTypes::ResultE             ResultE;
    typedef NewActionTypes::FunctorArgumentType FunctorArgumentType;
    typedef NewActionTypes::Functor             Functor;

    virtual ~ActorBase(void);

    /// Calls what is registered for the type of the argument node's core.
    virtual ResultE enterNode(FunctorArgumentType &funcArg) = 0;
    virtual ResultE leaveNode(FunctorArgumentType &funcArg) = 0;

  protected:
    ActorBase(void);
};

class BasicActorBase : public ActorBase
{
  public:
    virtual ~BasicActorBase(void);

  protected:
    BasicActorBase(void);
};

OSG_END_NAMESPACE

#endif
