/// IntersectActorBase: the functor registry of the intersect actor, per core
/// type; class-wide registrations are what core types make in initMethod.
#ifndef _OSGINTERSECTACTORBASE_H_
#define _OSGINTERSECTACTORBASE_H_

#include <OpenSG/OSGActorBase.h>
#include <OpenSG/OSGFieldContainerType.h>

#include <map>

OSG_BEGIN_NAMESPACE

class IntersectActorBase : public BasicActorBase
{
  public:
    typedef std::map<UInt32, Functor> FunctorStore;

    virtual ~IntersectActorBase(void);

    /// Class-wide functors for cores of exactly this type.
    static void regClassEnter(const Functor &refFunc, const FieldContainerType &refType);
    static void regClassLeave(const Functor &refFunc, const FieldContainerType &refType);

    /// Functors of this instance; they come before the class-wide ones.
    void regEnter(const Functor &refFunc, const FieldContainerType &refType);
    void regLeave(const Functor &refFunc, const FieldContainerType &refType);
    /// Called for types nothing is registered for.
    void regDefaultEnter(const Functor &refFunc) { _defaultEnter = refFunc; }
    void regDefaultLeave(const Functor &refFunc) { _defaultLeave = refFunc; }

    /// Whether a class-wide functor is registered for the type id.
    static bool hasClassEnter(UInt32 typeId);
    static bool hasClassLeave(UInt32 typeId);

    virtual ResultE enterNode(FunctorArgumentType &funcArg);
    virtual ResultE leaveNode(FunctorArgumentType &funcArg);

  protected:
    IntersectActorBase(void);

  private:
    static FunctorStore *_classEnter;
    static FunctorStore *_classLeave;

    FunctorStore _enter;
    FunctorStore _leave;
    Functor      _defaultEnter;
    Functor      _defaultLeave;

    static ResultE call(const FunctorStore &instance, const FunctorStore *classwide,
                        const Functor &fallback, FunctorArgumentType &funcArg);
};

OSG_END_NAMESPACE

#endif
