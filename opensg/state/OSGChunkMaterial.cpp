#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeometry.h>

OSG_BEGIN_NAMESPACE

ChunkMaterial::ChunkMaterial(void) : Inherited()
{
}

ChunkMaterial::ChunkMaterial(const ChunkMaterial &source) : Inherited(source)
{
}

ChunkMaterial::~ChunkMaterial(void)
{
}

void ChunkMaterial::initMethod(void)
{
}

void ChunkMaterial::onCreate(const ChunkMaterial *source)
{
    if(source == NULL)
        return;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
        if(_mfChunks[i] != NullFC)
            addRefCP(_mfChunks[i]);
}

void ChunkMaterial::onDestroy(void)
{
    clearChunks();
    Inherited::onDestroy();
}

bool ChunkMaterial::addChunk(StateChunkPtr chunk, Int32 slot)
{
    if(slot != State::AutoSlotReplace)
    {
        while(_mfSlots.size() < _mfChunks.size())
            _mfSlots.push_back(State::AutoSlotReplace);
    }

    _mfChunks.push_back(chunk);

    if(slot != State::AutoSlotReplace)
        _mfSlots.push_back(slot);

    addRefCP(chunk);
    return true;
}

bool ChunkMaterial::subChunk(StateChunkPtr chunk, Int32 slot)
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        if(_mfChunks[i] != chunk)
            continue;
        if(slot != State::AutoSlotReplace && !(i < _mfSlots.size() && _mfSlots[i] == slot))
            continue;

        _mfChunks.erase(_mfChunks.begin() + i);
        if(i < _mfSlots.size())
            _mfSlots.erase(_mfSlots.begin() + i);
        subRefCP(chunk);
        return false;
    }

    SWARNING << "ChunkMaterial::subChunk(" << this << ") has no chunk " << chunk
             << " with slot " << slot << std::endl;
    return true;
}

Int32 ChunkMaterial::find(StateChunkPtr chunk)
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
        if(_mfChunks[i] == chunk)
            return Int32(i);
    return -1;
}

StateChunkPtr ChunkMaterial::find(const FieldContainerType &type, Int32 slot)
{
    Int32 ordinal = 0;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        StateChunkPtr chunk = _mfChunks[i];
        if(chunk == NullFC || &chunk->getType() != &type)
            continue;

        Int32 effective = ordinal++;
        if(i < _mfSlots.size() && _mfSlots[i] != State::AutoSlotReplace)
            effective = _mfSlots[i];

        if(slot == State::AutoSlotReplace || slot == effective)
            return chunk;
    }
    return NullFC;
}

void ChunkMaterial::clearChunks(void)
{
    // OpenSG keeps the slots here, so stale entries would apply to the
    // chunks added next; they go with their chunks instead
    MFStateChunkPtr chunks;
    chunks.swap(_mfChunks);
    _mfSlots.clear();
    for(UInt32 i = 0; i < chunks.size(); ++i)
        subRefCP(chunks[i]);
}

void ChunkMaterial::addChunks(StatePtr state)
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        if(_mfChunks[i] == NullFC)
            continue;
        Int32 slot = i < _mfSlots.size() ? _mfSlots[i] : Int32(State::AutoSlotReplace);
        state->addChunk(_mfChunks[i], slot);
    }
}

StatePtr ChunkMaterial::makeState(void)
{
    StatePtr state = State::create();
    addChunks(state);
    return state;
}

void ChunkMaterial::rebuildState(void)
{
    if(_pState != NullFC)
    {
        _pState->clearChunks();
    }
    else
    {
        _pState = State::create();
        addRefCP(_pState);
    }
    addChunks(_pState);
}

bool ChunkMaterial::isTransparent(void) const
{
    if(getTransparencyMode() != TransparencyAutoDetection)
        return getTransparencyMode() == TransparencyForceTransparent;

    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
        if(_mfChunks[i] != NullFC && _mfChunks[i]->isTransparent())
            return true;
    return false;
}

void ChunkMaterial::draw(Geometry *geo, DrawActionBase *action)
{
    StatePtr state = makeState();
    addRefCP(state);
    state->activate(action);
    geo->drawPrimitives(action);
    state->deactivate(action);
    subRefCP(state);
}

void ChunkMaterial::draw(DrawFunctor &func, DrawActionBase *action)
{
    StatePtr state = makeState();
    addRefCP(state);
    state->activate(action);
    func.call(action);
    state->deactivate(action);
    subRefCP(state);
}

bool ChunkMaterial::operator==(const Material &) const
{
    return false;
}

void ChunkMaterial::changed(BitVector whichField, UInt32 origin)
{
    // a loader or a generic field setter filled the list without counting
    if(origin & ChangedOrigin::Abstract)
    {
        for(UInt32 i = 0; i < _mfChunks.size(); ++i)
            if(_mfChunks[i] != NullFC)
                addRefCP(_mfChunks[i]);
    }
    Inherited::changed(whichField, origin);
}

void ChunkMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "ChunkMaterial at " << this << std::endl;
    SLOG << "Chunks: " << std::endl;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        SLOG << _mfChunks[i] << " "
             << (i < _mfSlots.size() ? _mfSlots[i] : Int32(State::AutoSlotReplace)) << std::endl;
    }
}

OSG_END_NAMESPACE
