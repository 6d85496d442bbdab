/// Types of the actor framework (the "new action" framework): results, the
/// argument an actor functor gets, and the functor type.
#ifndef _OSGNEWACTIONTYPES_H_
#define _OSGNEWACTIONTYPES_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTypedFunctors.h>

OSG_BEGIN_NAMESPACE

class ActorBase;

namespace NewActionTypes
{

enum ResultE
{
    Continue = 0x00,
    Skip     = 0x01,
    Break    = 0x02,
    Quit     = 0x04
};

/// What an actor functor is called with besides the core.
class FunctorArgumentType
{
  public:
    FunctorArgumentType(void) : _pActor(NULL), _node(), _uiPass(0) {}
    FunctorArgumentType(ActorBase *pActor, const NodePtr &node, UInt32 uiPass = 0)
        : _pActor(pActor), _node(node), _uiPass(uiPass) {}

    ActorBase *getActor(void) const { return _pActor; }
    void       setActor(ActorBase *pActor) { _pActor = pActor; }

    NodePtr getNode(void) const { return _node; }
    void    setNode(const NodePtr &node) { _node = node; }

    UInt32 getPass(void) const { return _uiPass; }
    void   setPass(UInt32 uiPass) { _uiPass = uiPass; }

  private:
    ActorBase *_pActor;
    NodePtr    _node;
    UInt32     _uiPass;
};

/// ResultE call(NodeCorePtr core, FunctorArgumentType &arg).
typedef TypedFunctor2Base<ResultE, CPtrCallArg<NodeCorePtr>,
                          ArgsCollector<FunctorArgumentType &> >
    Functor;

} // namespace NewActionTypes

OSG_END_NAMESPACE

#endif
