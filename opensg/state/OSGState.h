/// A set of state chunks, one per slot, switched on and off together.
///
/// The chunk vector is indexed by class id + slot, with NullFC in unused
/// positions; it grows on demand and never shrinks. Activation walks it in
/// index order, i.e. in class-id order and then slot order, and passes each
/// chunk its slot within its class.
#ifndef _OSGSTATE_H_
#define _OSGSTATE_H_

#include <OpenSG/OSGStateBase.h>
#include <OpenSG/OSGStateChunk.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

class State : public StateBase
{
  private:
    typedef StateBase Inherited;

  public:
    enum
    {
        AutoSlot        = -1,   ///< lowest free slot; nothing if the class is full
        AutoSlotReplace = -2    ///< lowest free slot; the last one if the class is full
    };

    void activate(DrawActionBase *action);
    /// Switches from old to this state slot by slot: changeFrom where both
    /// have a chunk, activate or deactivate where only one has.
    void changeFrom(DrawActionBase *action, State *old);
    void deactivate(DrawActionBase *action);

    /// The entry at chunkId (class id + slot), NullFC beyond the end.
    StateChunkPtr getChunk(UInt32 chunkId);
    bool chunkPresent(UInt32 chunkId);
    /// Whether any slot of the chunk's class is occupied.
    bool chunkPresent(StateChunkPtr chunk);

    /// Puts chunk into a slot of its class; index is a slot number,
    /// AutoSlot or AutoSlotReplace. Returns false on success.
    bool addChunk(StateChunkPtr chunk, Int32 index = AutoSlotReplace);
    /// Removes that chunk from its class's slots; false on success.
    bool subChunk(StateChunkPtr chunk);
    /// Empties slot index of class classid; false on success.
    bool subChunk(UInt32 classid, Int32 index);
    /// Empties every entry; the vector keeps its length.
    void clearChunks(void);

    virtual Real32 switchCost(State *state);
    virtual bool operator<(const State &other) const;
    virtual bool operator==(const State &other) const;
    virtual bool operator!=(const State &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    State(void);
    State(const State &source);
    virtual ~State(void);

    /// A copy takes references of its own to the source's chunks.
    void onCreate(const State *source = NULL);
    /// Drops the references of the chunks.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class StateBase;

    static void initMethod(void);

    void operator=(const State &source);
};

typedef State *StateP;

OSG_END_NAMESPACE

#endif
