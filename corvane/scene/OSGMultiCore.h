#ifndef _OSGMULTICORE_H_
#define _OSGMULTICORE_H_

#include <OpenSG/OSGMultiCoreBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGActorBase.h>

OSG_BEGIN_NAMESPACE

/// A group core that plays a list of cores as if they sat on one node.
class MultiCore : public MultiCoreBase
{
  private:
    typedef MultiCoreBase Inherited;

  public:
    // The core list. None of these opens an edit: the caller brackets them
    // with beginEditCP/endEditCP on CoresFieldMask. Each entry holds a
    // reference; NullFC arguments are ignored.

    /// Appends core (the caller holds the edit of CoresFieldMask, as for
    /// every list operation; NullFC is ignored).
    void addCore(const NodeCorePtr &core);
    /// Inserts before index; an index past the end appends.
    void insertCore(UInt32 index, const NodeCorePtr &core);
    /// Nothing for an index at or past the end.
    void subCore(UInt32 index);
    /// Warns when core is not in the list.
    void subCore(const NodeCorePtr &core);
    /// Nothing for an index at or past the end.
    void replaceCore(UInt32 index, const NodeCorePtr &core);
    /// Exchanges the first entry that is oldCore; false when there is none
    /// or newCore is NullFC.
    bool replaceCoreBy(const NodeCorePtr &oldCore, const NodeCorePtr &newCore);
    /// The index of the first entry that is core, -1 when none.
    Int32 findCore(const NodeCorePtr &core) const;
    /// The entry at index (NullFC past the end).
    NodeCorePtr getCore(UInt32 index);

    // Draw and render play the cores' functors, enter from first to last,
    // leave from last to first; a core that skips ends the playing, not
    // the traversal of the children.

    /// Play the cores' functors: enter from first to last, leave from last
    /// to first; a core that skips ends the playing, not the traversal of
    /// the children.
    /// @{
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    /// @}

    // Picking doesn't play the cores: the children are tested as they are.

    /// The cores are not played: the children are tested as they are.
    /// @{
    Action::ResultE intersectEnter(Action *action);
    Action::ResultE intersectLeave(Action *action);
    NewActionTypes::ResultE intersectActorEnter(ActorBase::FunctorArgumentType &funcArg);
    NewActionTypes::ResultE intersectActorLeave(ActorBase::FunctorArgumentType &funcArg);
    /// @}

    /// An edit of the core list invalidates the volume.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    MultiCore(void);
    /// Copies the fields; the factory clones the prototype through it.
    MultiCore(const MultiCore &source);
    virtual ~MultiCore(void);

    /// A copy shares the cores and so holds a reference to each too.
    void onCreate(const MultiCore *source = NULL);
    /// Releases the cores, once.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class MultiCoreBase;

    static void initMethod(void);

    /// Calls each core's enter (or leave) functor with _coreNode.
    Action::ResultE play(Action *action, bool enter);

    /// Warns once per instance and kind of trouble.
    void warnOnce(UInt8 kind, const char *what);

    /// Stands in for the node while a core's functor runs; it holds the
    /// core only during the playing and never enters the scene.
    NodePtr _coreNode;
    /// Set while the cores play: a core list that leads back to this core
    /// is not played a second time.
    bool _playing;
    UInt8 _warned;

    void operator=(const MultiCore &source);
};

typedef MultiCore *MultiCoreP;

OSG_END_NAMESPACE

#endif
