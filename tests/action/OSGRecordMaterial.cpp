#include "OSGRecordMaterial.h"
#include "OSGRecordChunk.h"

OSG_BEGIN_NAMESPACE

RecordMaterial::RecordMaterial(void) : Inherited(), _passStates()
{
}

RecordMaterial::RecordMaterial(const RecordMaterial &source) : Inherited(source), _passStates()
{
}

RecordMaterial::~RecordMaterial(void)
{
}

void RecordMaterial::initMethod(void)
{
}

void RecordMaterial::onDestroy(void)
{
    for(StatePtr &s : _passStates)
        subRefCP(s);
    _passStates.clear();
    Inherited::onDestroy();
}

StatePtr RecordMaterial::makePassState(UInt32 pass)
{
    RecordChunkPtr chunk = RecordChunk::create();
    beginEditCP(chunk);
    chunk->setLabel(pass == 0 ? getLabel() : getLabel() + "/" + std::to_string(pass));
    chunk->setGl(getGl());
    chunk->setColor(getColor());
    chunk->setBlend(getTransparent());
    endEditCP(chunk);

    StatePtr state = State::create();
    beginEditCP(state);
    state->addChunk(chunk);
    for(UInt32 i = 0; i < getExtras().size(); ++i)
        state->addChunk(getExtras()[i]);
    endEditCP(state);
    return state;
}

StatePtr RecordMaterial::makeState(void)
{
    return makePassState(0);
}

void RecordMaterial::rebuildState(void)
{
    for(StatePtr &s : _passStates)
        subRefCP(s);
    _passStates.clear();

    for(UInt32 p = 0; p < getPasses(); ++p)
    {
        StatePtr s = makePassState(p);
        addRefCP(s);
        _passStates.push_back(s);
    }
}

StatePtr RecordMaterial::getState(UInt32 index)
{
    return index < _passStates.size() ? _passStates[index] : StatePtr();
}

void RecordMaterial::draw(DrawFunctor &func, DrawActionBase *action)
{
    StatePtr state = makeState();
    addRefCP(state);
    state->activate(action);
    func.call(action);
    state->deactivate(action);
    subRefCP(state);
}

void RecordMaterial::draw(Geometry *, DrawActionBase *)
{
}

OSG_END_NAMESPACE
