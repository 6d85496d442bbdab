#include <OpenSG/OSGState.h>

#include <iostream>

OSG_BEGIN_NAMESPACE

namespace
{
/// Walks chunk positions and tells the slot of each within its class. The
/// classes are contiguous runs, so a running start suffices.
class SlotCounter
{
  public:
    SlotCounter(void) : _start(0), _count(StateChunkClass::getNumSlots(0)) {}

    UInt32 slotOf(UInt32 pos)
    {
        while(pos >= _start + UInt32(_count > 0 ? _count : 1))
        {
            _start += UInt32(_count > 0 ? _count : 1);
            _count = StateChunkClass::getNumSlots(_start);
        }
        return pos - _start;
    }

  private:
    UInt32 _start;
    Int32  _count;
};

inline bool isPresent(const StateChunkPtr &chunk)
{
    return chunk != NullFC && !chunk->getIgnore();
}
} // namespace

State::State(void) : Inherited()
{
}

State::State(const State &source) : Inherited(source)
{
}

State::~State(void)
{
}

void State::initMethod(void)
{
}

void State::onCreate(const State *source)
{
    // a copy holds the source's chunks with references of its own
    if(source == NULL)
        return;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
        if(_mfChunks[i] != NullFC)
            addRefCP(_mfChunks[i]);
}

void State::onDestroy(void)
{
    clearChunks();
    Inherited::onDestroy();
}

void State::activate(DrawActionBase *action)
{
    SlotCounter slots;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        StateChunkPtr chunk = _mfChunks[i];
        if(isPresent(chunk))
            chunk->activate(action, slots.slotOf(i));
    }
}

void State::changeFrom(DrawActionBase *action, State *old)
{
    SlotCounter slots;
    UInt32 i = 0;
    for(; i < _mfChunks.size(); ++i)
    {
        StateChunkPtr n = _mfChunks[i];
        StateChunkPtr o = old != NULL ? old->getChunk(i) : StateChunkPtr();
        bool nIn = isPresent(n);
        bool oIn = isPresent(o);

        if(nIn && oIn)
            n->changeFrom(action, o.getCPtr(), slots.slotOf(i));
        else if(nIn)
            n->activate(action, slots.slotOf(i));
        else if(oIn)
            o->deactivate(action, slots.slotOf(i));
    }

    if(old == NULL)
        return;

    for(; i < old->_mfChunks.size(); ++i)
    {
        StateChunkPtr o = old->_mfChunks[i];
        if(isPresent(o))
            o->deactivate(action, slots.slotOf(i));
    }
}

void State::deactivate(DrawActionBase *action)
{
    SlotCounter slots;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        StateChunkPtr chunk = _mfChunks[i];
        if(isPresent(chunk))
            chunk->deactivate(action, slots.slotOf(i));
    }
}

StateChunkPtr State::getChunk(UInt32 chunkId)
{
    if(chunkId < _mfChunks.size())
        return _mfChunks[chunkId];
    return NullFC;
}

bool State::chunkPresent(UInt32 chunkId)
{
    return chunkId < _mfChunks.size() && _mfChunks[chunkId] != NullFC;
}

bool State::chunkPresent(StateChunkPtr chunk)
{
    if(chunk == NullFC || chunk->getClass() == NULL)
        return false;

    UInt32 cid = chunk->getClassId();
    Int32  n   = chunk->getClass()->getNumSlots();
    for(UInt32 i = cid; i < cid + UInt32(n) && i < _mfChunks.size(); ++i)
        if(_mfChunks[i] != NullFC)
            return true;
    return false;
}

bool State::addChunk(StateChunkPtr chunk, Int32 index)
{
    if(chunk == NullFC)
    {
        SWARNING << "addChunk: NullFC chunk, ignored!" << std::endl;
        return true;
    }

    const StateChunkClass *cls = chunk->getClass();
    if(cls == NULL)
    {
        SWARNING << "addChunk: chunk " << chunk << " of type " << chunk->getTypeName()
                 << " has no chunk class, ignored!" << std::endl;
        return true;
    }

    UInt32 cid = cls->getId();
    Int32  n   = cls->getNumSlots();

    // OpenSG lets index == n slip into the next class's slot 0; we don't
    if(index >= n)
    {
        SWARNING << "addChunk: index " << index << " > Numslots " << n << ",  ignored!"
                 << std::endl;
        return true;
    }

    UInt32 pos;
    if(index == AutoSlot || index == AutoSlotReplace)
    {
        Int32 found = -1;
        for(UInt32 i = cid; i < cid + UInt32(n); ++i)
        {
            if(i >= _mfChunks.size() || _mfChunks[i] == NullFC)
            {
                found = Int32(i);
                break;
            }
        }
        if(found < 0)
        {
            if(index == AutoSlot)
            {
                SWARNING << "addChunk: no free slot found for " << cls->getName()
                         << " class, ignored!" << std::endl;
                return true;
            }
            found = Int32(cid + n - 1);
        }
        pos = UInt32(found);
    }
    else if(index >= 0)
    {
        pos = cid + UInt32(index);
    }
    else
    {
        SWARNING << "addChunk: invalid index " << index << ", ignored!" << std::endl;
        return true;
    }

    if(pos >= _mfChunks.size())
        _mfChunks.resize(pos + 1, NullFC);

    setRefdCP(_mfChunks[pos], chunk);
    return false;
}

bool State::subChunk(StateChunkPtr chunk)
{
    if(chunk == NullFC)
        return true;

    const StateChunkClass *cls = chunk->getClass();
    if(cls != NULL)
    {
        UInt32 cid = cls->getId();
        Int32  n   = cls->getNumSlots();
        for(UInt32 i = cid; i < cid + UInt32(n) && i < _mfChunks.size(); ++i)
        {
            if(_mfChunks[i] == chunk)
            {
                _mfChunks[i] = NullFC;
                subRefCP(chunk);
                return false;
            }
        }
    }

    SWARNING << "subChunk: chunk " << chunk << " of class "
             << (cls != NULL ? cls->getName() : "<none>") << " not found!" << std::endl;
    return true;
}

bool State::subChunk(UInt32 classid, Int32 index)
{
    Int32 n = StateChunkClass::getNumSlots(classid);
    if(index < 0 || index >= n)
    {
        SWARNING << "subChunk: index " << index << " > Numslots " << n << ",  ignored!"
                 << std::endl;
        return true;
    }

    UInt32 pos = classid + UInt32(index);
    if(pos >= _mfChunks.size() || _mfChunks[pos] == NullFC)
        return true;

    StateChunkPtr chunk = _mfChunks[pos];
    _mfChunks[pos]      = NullFC;
    subRefCP(chunk);
    return false;
}

void State::clearChunks(void)
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        StateChunkPtr chunk = _mfChunks[i];
        if(chunk != NullFC)
        {
            _mfChunks[i] = NullFC;
            subRefCP(chunk);
        }
    }
}

Real32 State::switchCost(State *)
{
    return 0;
}

bool State::operator<(const State &other) const
{
    return this < &other;
}

bool State::operator==(const State &) const
{
    return false;
}

bool State::operator!=(const State &other) const
{
    return !(*this == other);
}

void State::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void State::dump(UInt32, const BitVector) const
{
    std::cerr << "State at " << this << std::endl;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        std::cerr << StateChunkClass::getName(i) << "\t";
        if(_mfChunks[i] == NullFC)
            std::cerr << "NullChunk" << std::endl;
        else
            std::cerr << _mfChunks[i].getCPtr() << std::endl;
    }
}

OSG_END_NAMESPACE
