#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGStateChunk.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>
#include <cstring>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatTimeElem> RenderAction::statDrawTime("drawTime", "time for draw tree traversal");
StatElemDesc<StatIntElem> RenderAction::statNMaterials("NMaterials", "number of material changes");
StatElemDesc<StatIntElem> RenderAction::statNMatrices("NMatrices", "number of matrix changes");
StatElemDesc<StatIntElem> RenderAction::statNLights("NLights", "number of active lights");
StatElemDesc<StatIntElem> RenderAction::statNGeometries("NGeometries", "number of geometry nodes");
StatElemDesc<StatIntElem> RenderAction::statNTransGeometries("NTransGeometries",
                                                             "number of transformed geometry nodes");
StatElemDesc<StatIntOnceElem> RenderAction::statNTextures("NTextures", "number of textures");
StatElemDesc<StatIntOnceElem> RenderAction::statNTexBytes("NTexBytes", "sum of all textures");
StatElemDesc<StatStringElem> RenderAction::statNOcclusionMode("OcclusionMode",
                                                              "occlusion culling mode");
StatElemDesc<StatIntElem> RenderAction::statNOcclusionTests("NOcclusionTests",
                                                            "number of occlusion tests");
StatElemDesc<StatIntElem> RenderAction::statNOcclusionCulled("NOcclusionCulled",
                                                             "number of objects culled via occlusion culling");

std::vector<Action::Functor> *RenderAction::_defaultEnterFunctors = NULL;
std::vector<Action::Functor> *RenderAction::_defaultLeaveFunctors = NULL;
RenderAction                 *RenderAction::_prototype            = NULL;

namespace
{

/// GL has eight fixed-function lights.
const UInt32 MaxLights = 8;

const UInt32 NoEntry = 0xFFFFFFFF;

/// Class ids of the chunk classes whose first slot gets update() calls
/// before every drawn object (-1: no such class in this process).
Int32 cgChunkId   = -1;
Int32 cgfxChunkId = -1;
Int32 shlChunkId  = -1;

Int32 findChunkClass(const Char8 *name)
{
    // The entries of a class are contiguous; its first one is its id.
    for(UInt32 i = 0; i < StateChunkClass::getUsedSlots(); ++i)
    {
        if(std::strcmp(StateChunkClass::getName(i), name) == 0)
            return Int32(i);
    }
    return -1;
}

void lookupChunkClasses(void)
{
    cgChunkId   = findChunkClass("CG");
    cgfxChunkId = findChunkClass("CGFX");
    shlChunkId  = findChunkClass("SHL");
}

void blackenLight(UInt32 index)
{
    static const GLfloat black[4] = {0.f, 0.f, 0.f, 1.f};
    GLenum               light    = GL_LIGHT0 + index;
    glDisable(light);
    glLightfv(light, GL_AMBIENT, black);
    glLightfv(light, GL_DIFFUSE, black);
    glLightfv(light, GL_SPECULAR, black);
}

} // namespace

// --- class tables ------------------------------------------------------------------

void RenderAction::registerEnterDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultEnterFunctors, type, func,
                    osgTypedFunctionFunctor2CPtrRef<ResultE, CNodePtr, Action *>(
                        &Action::_defaultEnterFunction));
}

void RenderAction::registerLeaveDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultLeaveFunctors, type, func,
                    osgTypedFunctionFunctor2CPtrRef<ResultE, CNodePtr, Action *>(
                        &Action::_defaultLeaveFunction));
}

std::vector<Action::Functor> *RenderAction::getDefaultEnterFunctors(void)
{
    return _defaultEnterFunctors;
}

std::vector<Action::Functor> *RenderAction::getDefaultLeaveFunctors(void)
{
    return _defaultLeaveFunctors;
}

// --- creation --------------------------------------------------------------------------

RenderAction::RenderAction(void)
    : RenderActionBase(), _bSortTrans(true), _bZWriteTrans(false), _bLocalLights(false),
      _bCorrectTwoSidedLighting(false), _bStateSorting(true), _bEffectsPass(false),
      _bDepthOnlyPass(false), _bRenderDepthPassOnly(false), _bUseGLFinish(true),
      _bOcclusionCulling(false), _occlusionCullingMode(OcclusionStopAndWait),
      _occlusionCullingPixels(0), _occlusionCullingThreshold(64), _bSmallFeatureCulling(false),
      _smallFeatureCullingMode(SmallFeatureCullingDraw), _smallFeaturePixels(10.f),
      _smallFeatureThreshold(32), _uiMatrixId(1), _currMatrix(1, Matrix()), _matrixStack(),
      _matrices(), _camInverse(), _camProjTranslate(), _accMatrix(), _visibilityStack(),
      _items(), _unsortedOpaque(), _unsortedTrans(), _matEntries(), _transRefs(), _matSlots(),
      _matSlotsUsed(0), _frameStamp(1), _lights(), _lightPath(), _lightStates(),
      _lightStateStack(), _currentLightState(0), _activeLightState(0), _lightEnvDepth(0),
      _activeLightsMask(0), _activeLightsCount(0), _lightEnvsLightsState(0),
      _pActiveState(NULL), _activeMatrixId(0), _uiNumMaterialChanges(0),
      _uiNumMatrixChanges(0), _uiNumGeometries(0), _uiNumTransGeometries(0)
{
    _enterFunctors.clear();
    _leaveFunctors.clear();
    if(_defaultEnterFunctors != NULL)
        _enterFunctors = *_defaultEnterFunctors;
    if(_defaultLeaveFunctors != NULL)
        _leaveFunctors = *_defaultLeaveFunctors;

    lookupChunkClasses();
}

RenderAction::RenderAction(const RenderAction &source)
    : RenderActionBase(source), _bSortTrans(source._bSortTrans),
      _bZWriteTrans(source._bZWriteTrans), _bLocalLights(source._bLocalLights),
      _bCorrectTwoSidedLighting(source._bCorrectTwoSidedLighting),
      _bStateSorting(source._bStateSorting), _bEffectsPass(source._bEffectsPass),
      _bDepthOnlyPass(source._bDepthOnlyPass), _bRenderDepthPassOnly(source._bRenderDepthPassOnly),
      _bUseGLFinish(source._bUseGLFinish), _bOcclusionCulling(source._bOcclusionCulling),
      _occlusionCullingMode(source._occlusionCullingMode),
      _occlusionCullingPixels(source._occlusionCullingPixels),
      _occlusionCullingThreshold(source._occlusionCullingThreshold),
      _bSmallFeatureCulling(source._bSmallFeatureCulling),
      _smallFeatureCullingMode(source._smallFeatureCullingMode),
      _smallFeaturePixels(source._smallFeaturePixels),
      _smallFeatureThreshold(source._smallFeatureThreshold), _uiMatrixId(1),
      _currMatrix(1, Matrix()), _matrixStack(), _matrices(), _camInverse(), _camProjTranslate(),
      _accMatrix(), _visibilityStack(), _items(), _unsortedOpaque(), _unsortedTrans(),
      _matEntries(), _transRefs(), _matSlots(), _matSlotsUsed(0), _frameStamp(1), _lights(),
      _lightPath(), _lightStates(), _lightStateStack(), _currentLightState(0),
      _activeLightState(0), _lightEnvDepth(0), _activeLightsMask(0), _activeLightsCount(0),
      _lightEnvsLightsState(0), _pActiveState(NULL), _activeMatrixId(0),
      _uiNumMaterialChanges(0), _uiNumMatrixChanges(0), _uiNumGeometries(0),
      _uiNumTransGeometries(0)
{
    lookupChunkClasses();
}

RenderAction::~RenderAction(void)
{
}

RenderAction *RenderAction::create(void)
{
    if(_prototype != NULL)
        return new RenderAction(*_prototype);
    return new RenderAction;
}

void RenderAction::setPrototype(RenderAction *proto)
{
    _prototype = proto;
}

RenderAction *RenderAction::getPrototype(void)
{
    return _prototype;
}

// --- matrices --------------------------------------------------------------------------------

void RenderAction::updateTopMatrix(void)
{
    _accMatrix = _camInverse;
    _accMatrix.mult(_currMatrix.second);
}

void RenderAction::push_matrix(const Matrix &matrix)
{
    _matrixStack.push_back(_currMatrix);

    _currMatrix.first = ++_uiMatrixId;
    _currMatrix.second.mult(matrix);

    // the model-view of every id stays available to the draw phase
    _matrices.push_back(_currMatrix.second);

    updateTopMatrix();
}

void RenderAction::pop_matrix(void)
{
    if(_matrixStack.empty())
    {
        SWARNING << "RenderAction::pop_matrix: matrix stack is empty!" << std::endl;
        return;
    }

    _currMatrix = _matrixStack.back();
    _matrixStack.pop_back();

    updateTopMatrix();
}

// --- visibility -------------------------------------------------------------------------------

bool RenderAction::isVisible(Node *node)
{
    if(node == NULL)
        return false;

    if(!getFrustumCulling() || underLightEnv())
        return true;

    getStatistics()->getElem(statCullTestedNodes)->inc();

    node->updateVolume();

    DynamicVolume vol = node->getVolume();
    vol.transform(top_matrix());

    if(intersect(getFrustum(), vol))
    {
        queueVolume(vol);
        return true;
    }

    getStatistics()->getElem(statCulledNodes)->inc();
    return false;
}

bool RenderAction::pushVisibility(void)
{
    if(!getFrustumCulling() || underLightEnv())
        return true;

    FrustumVolume::PlaneSet inplanes =
        _visibilityStack.empty() ? FrustumVolume::PlaneSet(FrustumVolume::P_NONE)
                                 : _visibilityStack.back();

    // completely inside: nothing below needs a test
    if(inplanes == FrustumVolume::P_ALL)
    {
        _visibilityStack.push_back(inplanes);
        return true;
    }

    NodePtr node = getActNode();
    node->updateVolume();

    DynamicVolume vol = node->getVolume();
    vol.transform(top_matrix());

    bool result = intersect(getFrustum(), vol, inplanes);

    if(!result)
    {
        getStatistics()->getElem(statCulledNodes)->inc();
        useNodeList();
    }
    else
    {
        queueVolume(vol);
    }

    _visibilityStack.push_back(inplanes);

    return result;
}

void RenderAction::popVisibility(void)
{
    if(!getFrustumCulling() || underLightEnv())
        return;

    if(_visibilityStack.empty())
    {
        SWARNING << "RenderAction::popVisibility: visibility stack is empty!" << std::endl;
        return;
    }

    _visibilityStack.pop_back();
}

// --- collecting ----------------------------------------------------------------------------------

UInt32 RenderAction::addItem(DrawFunctor &func, State *state, bool unsorted, bool lastPass,
                             bool transparent)
{
    _items.emplace_back();

    DrawItem &item   = _items.back();
    item.node        = getActNode();
    item.functor     = func;
    item.state       = state;
    item.matrixId    = _currMatrix.first;
    item.lightState  = _currentLightState;
    item.next        = -1;
    item.unsorted    = unsorted;
    item.lastPass    = lastPass;
    item.transparent = transparent;

    return UInt32(_items.size() - 1);
}

UInt32 RenderAction::findMatEntry(Material *mat, UInt32 pass)
{
    if(_matSlots.empty())
        return NoEntry;

    size_t mask = _matSlots.size() - 1;
    size_t h    = ((reinterpret_cast<size_t>(mat) >> 4) * 2654435761u + pass) & mask;

    while(_matSlots[h].stamp == _frameStamp)
    {
        if(_matSlots[h].material == mat && _matSlots[h].pass == pass)
            return _matSlots[h].entry;
        h = (h + 1) & mask;
    }
    return NoEntry;
}

void RenderAction::insertMatSlot(Material *mat, UInt32 pass, UInt32 entry)
{
    if((_matSlotsUsed + 1) * 2 > _matSlots.size())
    {
        // grow and re-insert this frame's entries
        size_t size = _matSlots.empty() ? 64 : _matSlots.size() * 2;
        _matSlots.assign(size, MatSlot());
        for(MatSlot &s : _matSlots)
            s.stamp = 0;
        _frameStamp   = 1;
        _matSlotsUsed = 0;
        for(UInt32 i = 0; i < _matEntries.size(); ++i)
        {
            if(i != entry)
                insertMatSlot(_matEntries[i].material, _matEntries[i].pass, i);
        }
    }

    size_t mask = _matSlots.size() - 1;
    size_t h    = ((reinterpret_cast<size_t>(mat) >> 4) * 2654435761u + pass) & mask;
    while(_matSlots[h].stamp == _frameStamp)
        h = (h + 1) & mask;

    _matSlots[h].material = mat;
    _matSlots[h].pass     = pass;
    _matSlots[h].entry    = entry;
    _matSlots[h].stamp    = _frameStamp;
    ++_matSlotsUsed;
}

void RenderAction::dropFunctor(DrawFunctor &func, Material *mat)
{
    Material *pMat = _pMaterial != NULL ? _pMaterial : mat;
    if(pMat == NULL)
        return;

    Int32  sortKey     = pMat->getRealSortKey();
    bool   transparent = pMat->isTransparent();
    bool   multiPass   = pMat->isMultiPass();
    UInt32 nPasses     = multiPass ? pMat->getNPasses() : 1;

    ++_uiNumGeometries;
    if(transparent)
        ++_uiNumTransGeometries;

    if(!_bStateSorting ||
       (sortKey == Material::NoStateSorting && (!_bSortTrans || !transparent)))
    {
        for(UInt32 pass = 0; pass < nPasses; ++pass)
        {
            State *state = pMat->getState(pass).getCPtr();
            UInt32 idx = addItem(func, state, true, multiPass && pass + 1 == nPasses, transparent);
            (transparent ? _unsortedTrans : _unsortedOpaque).push_back(idx);
        }
        return;
    }

    if(sortKey == Material::NoStateSorting)
        sortKey = 0;

    if(transparent && _bSortTrans)
    {
        // depth of the node's centre in the camera's system: ascending z
        // draws the farthest first
        Pnt3f       center(0.f, 0.f, 0.f);
        NodePtr     node = getActNode();
        if(node != NullFC)
            node->getVolume(true).getCenter(center);
        _currMatrix.second.mult(center, center);
        _camProjTranslate.mult(center, center);

        for(UInt32 pass = 0; pass < nPasses; ++pass)
        {
            State   *state = pMat->getState(pass).getCPtr();
            TransRef ref;
            ref.sortKey = sortKey;
            ref.z       = center[2];
            ref.seq     = UInt32(_transRefs.size());
            ref.item    = addItem(func, state, false, multiPass && pass + 1 == nPasses, true);
            _transRefs.push_back(ref);
        }
        return;
    }

    for(UInt32 pass = 0; pass < nPasses; ++pass)
    {
        UInt32 entry = findMatEntry(pMat, pass);
        if(entry == NoEntry)
        {
            MatEntry e;
            e.sortKey  = sortKey;
            e.seq      = UInt32(_matEntries.size());
            e.material = pMat;
            e.pass     = pass;
            e.state    = pMat->getState(pass).getCPtr();
            e.lastPass = multiPass && pass + 1 == nPasses;
            e.head     = -1;
            e.tail     = -1;
            _matEntries.push_back(e);
            entry = UInt32(_matEntries.size() - 1);
            insertMatSlot(pMat, pass, entry);
        }

        Int32     idx = Int32(addItem(func, NULL, false, false, transparent));
        MatEntry &e   = _matEntries[entry];
        if(e.tail < 0)
            e.head = idx;
        else
            _items[e.tail].next = idx;
        e.tail = idx;
    }
}

// --- lights ----------------------------------------------------------------------------------------

void RenderAction::dropLight(Light *light)
{
    if(light == NULL)
        return;

    light->makeChunk();

    LightInfo info;
    info.light = light;
    info.chunk = light->getChunk().getCPtr();

    NodePtr beacon = light->getBeacon();
    if(beacon != NullFC)
    {
        info.matrix = _matrices.size() > 1 ? _matrices[1] : Matrix();
        Matrix toWorld;
        beacon->getToWorld(toWorld);
        info.matrix.mult(toWorld);
    }
    else
    {
        SINFO << "draw: no beacon set!" << std::endl;
        info.matrix = _currMatrix.second;
    }

    if(!_bLocalLights && _lights.size() >= MaxLights)
    {
        SWARNING << "RenderAction::dropLight: maximum light source limit is 8 skipping light "
                    "sources!"
                 << std::endl;
    }

    _lights.push_back(info);

    if(_bLocalLights)
    {
        // the light lights this subtree: a new light state with it on the path
        _lightPath.push_back(UInt32(_lights.size() - 1));
        _lightStates.push_back(_lightPath);
        _currentLightState = UInt32(_lightStates.size() - 1);
        _lightStateStack.push_back(_currentLightState);
    }
}

void RenderAction::undropLight(Light *light)
{
    if(!_bLocalLights || _lightPath.empty())
        return;

    _lightPath.pop_back();
    _lightStateStack.pop_back();
    _currentLightState = _lightStateStack.empty() ? 0 : _lightStateStack.back();
}

void RenderAction::dropLightEnv(LightEnv *)
{
    ++_lightEnvDepth;
    ++_lightEnvsLightsState;
}

void RenderAction::undropLightEnv(LightEnv *)
{
    if(_lightEnvDepth > 0)
        --_lightEnvDepth;
}

std::vector<Light *> RenderAction::getActiveLights(void)
{
    std::vector<Light *> result;

    if(!_bLocalLights)
    {
        for(const LightInfo &l : _lights)
            result.push_back(l.light);
        return result;
    }

    // in the draw phase the state of the item being drawn, else the path's
    UInt32 ls = _activeLightState != 0 ? _activeLightState : _currentLightState;
    if(ls < _lightStates.size())
    {
        for(UInt32 i : _lightStates[ls])
            result.push_back(_lights[i].light);
    }
    return result;
}

void RenderAction::activateLights(void)
{
    _activeLightsMask  = 0;
    _activeLightsCount = 0;

    for(UInt32 i = 0; i < _lights.size() && i < MaxLights; ++i)
    {
        if(_lights[i].chunk == NULL)
            continue;
        _activeLightsMask |= 1u << i;
        glLoadMatrixf(_lights[i].matrix.getValues());
        _lights[i].chunk->activate(this, i);
        ++_activeLightsCount;
    }
}

void RenderAction::deactivateLights(void)
{
    if(!_bLocalLights)
    {
        for(UInt32 i = 0; i < _lights.size() && i < MaxLights; ++i)
        {
            if(_lights[i].chunk != NULL)
                _lights[i].chunk->deactivate(this, i);
        }
    }
    else if(_activeLightState < _lightStates.size())
    {
        const std::vector<UInt32> &path = _lightStates[_activeLightState];
        for(UInt32 j = 0; j < path.size() && j < MaxLights; ++j)
        {
            if(_lights[path[j]].chunk != NULL)
                _lights[path[j]].chunk->deactivate(this, j);
        }
    }

    _activeLightsMask  = 0;
    _activeLightsCount = 0;
    _activeLightState  = 0;
}

void RenderAction::activateLocalLights(UInt32 lightState)
{
    const std::vector<UInt32> &path = _lightStates[lightState];

    glPushMatrix();

    UInt32 n = 0;
    for(UInt32 j = 0; j < path.size() && j < MaxLights; ++j, ++n)
    {
        LightInfo &l = _lights[path[j]];
        if(l.chunk == NULL)
            continue;
        glLoadMatrixf(l.matrix.getValues());
        l.chunk->activate(this, j);
        _activeLightsMask |= 1u << j;
    }

    // lights of the previous state beyond this one's go dark
    for(UInt32 j = n; j < MaxLights; ++j)
    {
        if(_activeLightsMask & (1u << j))
        {
            blackenLight(j);
            _activeLightsMask &= ~(1u << j);
        }
    }

    glPopMatrix();

    _activeLightsCount = n;
    _activeLightState  = lightState;
}

// --- draw phase --------------------------------------------------------------------------------------

void RenderAction::updateShader(State *state)
{
    const Int32 ids[3] = {cgChunkId, cgfxChunkId, shlChunkId};
    for(Int32 id : ids)
    {
        if(id < 0)
            continue;
        StateChunkPtr chunk = state->getChunk(UInt32(id));
        if(chunk != NullFC)
            chunk->update(this);
    }
}

void RenderAction::applyState(State *state, bool unsorted)
{
    if(state == NULL)
    {
        if(_pActiveState != NULL)
            updateShader(_pActiveState);
        return;
    }

    if(_pActiveState == NULL)
    {
        _pActiveState = state;
        state->activate(this);
        ++_uiNumMaterialChanges;
        return;
    }

    bool hasCGFX = cgfxChunkId >= 0 && state->getChunk(UInt32(cgfxChunkId)) != NullFC;

    if(state != _pActiveState || hasCGFX || unsorted)
    {
        State *old    = _pActiveState;
        _pActiveState = state;
        state->changeFrom(this, old);
        ++_uiNumMaterialChanges;
    }

    updateShader(state);
}

void RenderAction::drawItem(DrawItem &item, State *state, bool lastPass)
{
    if(item.matrixId != 0 && item.matrixId != _activeMatrixId)
    {
        const Matrix &mv = _matrices[item.matrixId];

        glLoadMatrixf(mv.getValues());
        _activeMatrixId = item.matrixId;

        _currMatrix.first  = item.matrixId;
        _currMatrix.second = mv;
        updateTopMatrix();

        ++_uiNumMatrixChanges;

        if(_bCorrectTwoSidedLighting)
            glFrontFace(mv.det() < 0.f ? GL_CW : GL_CCW);
    }

    setActNode(item.node);

    if(_bLocalLights && item.lightState != _activeLightState)
        activateLocalLights(item.lightState);

    applyState(state, item.unsorted);

    item.functor.call(this);

    if(lastPass && _pActiveState != NULL)
    {
        State *done   = _pActiveState;
        _pActiveState = NULL;
        done->deactivate(this);
    }
}

void RenderAction::drawEntry(const MatEntry &entry)
{
    // the entry's state goes with its first item; the others share it
    for(Int32 i = entry.head; i >= 0; i = _items[i].next)
    {
        DrawItem &item = _items[i];
        drawItem(item, i == entry.head ? entry.state : NULL, entry.lastPass && item.next < 0);
    }
}

Action::ResultE RenderAction::start(void)
{
    ResultE res = DrawActionBase::start();
    if(res != Continue)
        return res;

    if(_window != NULL)
        _window->resizeGL();

    _uiMatrixId = 1;
    _currMatrix.first = 1;
    _currMatrix.second.setIdentity();
    _matrixStack.clear();
    _camInverse.setIdentity();
    _camProjTranslate.setIdentity();

    _visibilityStack.clear();
    _visibilityStack.push_back(FrustumVolume::P_NONE);

    if(_viewport != NULL)
    {
        if(_camera != NULL)
        {
            UInt32 w = UInt32(_viewport->getPixelWidth());
            UInt32 h = UInt32(_viewport->getPixelHeight());

            _camera->setupProjection(this, *_viewport);
            _camera->getViewing(_currMatrix.second, w, h);
            _camera->getProjectionTranslation(_camProjTranslate, w, h);
            _camInverse.invertFrom(_currMatrix.second);

            glMatrixMode(GL_MODELVIEW);
        }

        if(_background != NULL)
            _background->clear(this, _viewport);
    }

    // model-view by matrix id: 0 is "none", 1 the viewing matrix
    _matrices.clear();
    _matrices.push_back(Matrix());
    _matrices.push_back(_currMatrix.second);

    updateTopMatrix();

    _items.clear();
    _unsortedOpaque.clear();
    _unsortedTrans.clear();
    _matEntries.clear();
    _transRefs.clear();
    _matSlotsUsed = 0;
    if(++_frameStamp == 0)
    {
        for(MatSlot &s : _matSlots)
            s.stamp = 0;
        _frameStamp = 1;
    }

    _pActiveState   = NULL;
    _activeMatrixId = 0;

    _uiNumMaterialChanges = 0;
    _uiNumMatrixChanges   = 0;
    _uiNumGeometries      = 0;
    _uiNumTransGeometries = 0;

    if(getResetStatistics())
        getStatistics()->reset();

    _lights.clear();
    _lightPath.clear();
    _lightStates.clear();
    _lightStates.push_back(std::vector<UInt32>());
    _lightStateStack.clear();
    _currentLightState    = 0;
    _activeLightState     = 0;
    _lightEnvDepth        = 0;
    _lightEnvsLightsState = 0;
    _activeLightsMask     = 0;
    _activeLightsCount    = 0;

    _bStateSorting = true;

    return Continue;
}

Action::ResultE RenderAction::stop(ResultE res)
{
    StatCollector *sc = getStatistics();
    sc->getElem(statDrawTime)->start();

    glPushMatrix();

    if(!_bLocalLights)
    {
        activateLights();
    }
    else
    {
        for(UInt32 i = 0; i < MaxLights; ++i)
            blackenLight(i);
        _activeLightsMask  = 0;
        _activeLightsCount = 0;
        _activeLightState  = 0;
    }

    for(UInt32 i = 0; i < 6; ++i)
        glDisable(GL_CLIP_PLANE0 + i);

    // the lights changed the matrix: the first item loads its own
    _activeMatrixId = 0;

    glDepthMask(GL_TRUE);

    for(UInt32 idx : _unsortedOpaque)
        drawItem(_items[idx], _items[idx].state, _items[idx].lastPass);

    for(UInt32 idx : _unsortedTrans)
        drawItem(_items[idx], _items[idx].state, _items[idx].lastPass);

    std::sort(_matEntries.begin(), _matEntries.end(),
              [](const MatEntry &a, const MatEntry &b)
              { return a.sortKey != b.sortKey ? a.sortKey < b.sortKey : a.seq < b.seq; });

    std::sort(_transRefs.begin(), _transRefs.end(),
              [](const TransRef &a, const TransRef &b)
              {
                  if(a.sortKey != b.sortKey)
                      return a.sortKey < b.sortKey;
                  if(a.z != b.z)
                      return a.z < b.z;
                  return a.seq < b.seq;
              });

    // ascending sort keys; on equal keys the opaque bucket first
    size_t o = 0, t = 0;
    while(o < _matEntries.size() || t < _transRefs.size())
    {
        Int32 key;
        if(o < _matEntries.size() && t < _transRefs.size())
            key = std::min(_matEntries[o].sortKey, _transRefs[t].sortKey);
        else if(o < _matEntries.size())
            key = _matEntries[o].sortKey;
        else
            key = _transRefs[t].sortKey;

        for(; o < _matEntries.size() && _matEntries[o].sortKey == key; ++o)
            drawEntry(_matEntries[o]);

        if(t < _transRefs.size() && _transRefs[t].sortKey == key)
        {
            if(!_bZWriteTrans)
                glDepthMask(GL_FALSE);

            for(; t < _transRefs.size() && _transRefs[t].sortKey == key; ++t)
            {
                DrawItem &item = _items[_transRefs[t].item];
                drawItem(item, item.state, item.lastPass);
            }

            glDepthMask(GL_TRUE);
        }
    }

    if(_pActiveState != NULL)
    {
        State *last   = _pActiveState;
        _pActiveState = NULL;
        last->deactivate(this);
    }

    deactivateLights();

    glDepthMask(GL_TRUE);
    glLoadIdentity();

    if(_bUseGLFinish)
        glFinish();

    StatTimeElem *drawTime = sc->getElem(statDrawTime);
    drawTime->stop();
    if(_viewport != NULL)
        _viewport->setDrawTime(Real32(drawTime->getTime()));

    if(!hasOwnStat())
    {
        sc->getElem(statNMaterials)->set(Int32(_uiNumMaterialChanges));
        sc->getElem(statNMatrices)->set(Int32(_uiNumMatrixChanges));
        sc->getElem(statNLights)->set(Int32(_lights.size()));
        sc->getElem(statNGeometries)->set(Int32(_uiNumGeometries));
        sc->getElem(statNTransGeometries)->set(Int32(_uiNumTransGeometries));
        sc->getElem(statNOcclusionTests)->set(0);
        sc->getElem(statNOcclusionCulled)->set(0);
        sc->getElem(statNOcclusionMode)->set("Off");
    }

    glPopMatrix();

    return DrawActionBase::stop(res);
}

OSG_END_NAMESPACE
