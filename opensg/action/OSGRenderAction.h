/// RenderAction: the sorting renderer. The traversal collects draw items
/// (drawable, material state, model-view matrix, lights) into a draw tree;
/// stop() then sets up the lights and draws the items, grouped by sort key,
/// opaque materials together, transparent objects back to front.
#ifndef _OSGRENDERACTION_H_
#define _OSGRENDERACTION_H_

#include <OpenSG/OSGRenderActionBase.h>

#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

class State;
class Material;
class Geometry;
class Light;
class LightChunk;
class LightEnv;

class RenderAction : public RenderActionBase
{
  public:
    /// The functor a drawable hands over: Material::DrawFunctor.
    typedef TypedFunctor1Base<Action::ResultE, PtrCallArg<DrawActionBase> > DrawFunctor;

    typedef std::pair<UInt32, Matrix> MatrixStore;

    enum
    {
        OcclusionStopAndWait            = 1,
        OcclusionMultiFrame             = 2,
        OcclusionHierarchicalMultiFrame = 6
    };

    enum
    {
        SmallFeatureCullingDraw      = 1,
        SmallFeatureCullingTraversal = 2
    };

    static StatElemDesc<StatTimeElem>   statDrawTime;
    static StatElemDesc<StatIntElem>    statNMaterials;
    static StatElemDesc<StatIntElem>    statNMatrices;
    static StatElemDesc<StatIntElem>    statNLights;
    static StatElemDesc<StatIntElem>    statNGeometries;
    static StatElemDesc<StatIntElem>    statNTransGeometries;
    static StatElemDesc<StatIntOnceElem> statNTextures;
    static StatElemDesc<StatIntOnceElem> statNTexBytes;
    static StatElemDesc<StatStringElem> statNOcclusionMode;
    static StatElemDesc<StatIntElem>    statNOcclusionTests;
    static StatElemDesc<StatIntElem>    statNOcclusionCulled;

    static RenderAction *create(void);
    static void          setPrototype(RenderAction *proto);
    static RenderAction *getPrototype(void);

    static void registerEnterDefault(const FieldContainerType &type, const Functor &func);
    static void registerLeaveDefault(const FieldContainerType &type, const Functor &func);

    virtual ~RenderAction(void);

    // --- collecting (traversal phase) -------------------------------------------

    /// Queues a drawable's functor with its material (the override material
    /// wins); nothing happens without a material.
    void dropFunctor(DrawFunctor &func, Material *mat);
    /// The same for a geometry drawn with its own drawPrimitives.
    void dropGeometry(Geometry *geo);

    /// Records a light (its chunk and beacon matrix) for the draw phase.
    void dropLight(Light *light);
    void undropLight(Light *light);

    /// Local lights end at a LightEnv's subtree; under one, nothing is culled.
    void dropLightEnv(LightEnv *lightEnv);
    void undropLightEnv(LightEnv *lightEnv);

    /// All dropped lights (local mode: those of the active light state).
    std::vector<Light *> getActiveLights(void);
    /// Bit i set: GL_LIGHT0 + i is lit for the item being drawn.
    UInt32 getActiveLightsMask(void) const { return _activeLightsMask; }
    UInt32 getActiveLightsCount(void) const { return _activeLightsCount; }
    UInt32 getLightEnvsLightsState(void) const { return _lightEnvsLightsState; }

    /// The state active in the draw phase (NULL outside it).
    State *getCurrentState(void) const { return _pActiveState; }

    // --- matrices ------------------------------------------------------------------

    /// Model-view := model-view * matrix, with a new matrix id.
    void push_matrix(const Matrix &matrix);
    void pop_matrix(void);
    /// The accumulated object-to-world matrix at the current point (in the
    /// draw phase: of the item being drawn).
    const Matrix &top_matrix(void) const { return _accMatrix; }

    // --- visibility -------------------------------------------------------------------

    virtual bool isVisible(Node *node);

    /// Tests the active node against the frustum, remembering the planes
    /// it is completely inside of; a culled node gets an empty node list.
    /// With culling off (or under a LightEnv) nothing is pushed.
    bool pushVisibility(void);
    void popVisibility(void);

    // --- settings ----------------------------------------------------------------------

    void setSortTrans(bool bVal) { _bSortTrans = bVal; }
    bool getSortTrans(void) const { return _bSortTrans; }

    void setZWriteTrans(bool bVal) { _bZWriteTrans = bVal; }
    bool getZWriteTrans(void) const { return _bZWriteTrans; }

    void setLocalLights(bool bVal) { _bLocalLights = bVal; }
    bool getLocalLights(void) const { return _bLocalLights; }

    void setCorrectTwoSidedLighting(bool bVal) { _bCorrectTwoSidedLighting = bVal; }
    bool getCorrectTwoSidedLighting(void) const { return _bCorrectTwoSidedLighting; }

    /// Reset to true by every start().
    void setStateSorting(bool bVal) { _bStateSorting = bVal; }
    bool getStateSorting(void) const { return _bStateSorting; }

    void setEffectsPass(bool bVal) { _bEffectsPass = bVal; }
    bool getEffectsPass(void) const { return _bEffectsPass; }

    void setDepthOnlyPass(bool bVal) { _bDepthOnlyPass = bVal; }
    bool getDepthOnlyPass(void) const { return _bDepthOnlyPass; }
    void setRenderDepthPassOnly(bool bVal) { _bRenderDepthPassOnly = bVal; }
    bool getRenderDepthPassOnly(void) const { return _bRenderDepthPassOnly; }

    void setUseGLFinish(bool bVal) { _bUseGLFinish = bVal; }
    bool getUseGLFinish(void) const { return _bUseGLFinish; }

    // Occlusion and small-feature culling are not done by this renderer; the
    // settings are kept for applications that set them.
    void   setOcclusionCulling(bool bVal) { _bOcclusionCulling = bVal; }
    bool   getOcclusionCulling(void) const { return _bOcclusionCulling; }
    void   setOcclusionCullingMode(Int32 mode) { _occlusionCullingMode = mode; }
    Int32  getOcclusionCullingMode(void) const { return _occlusionCullingMode; }
    void   setOcclusionCullingPixels(UInt32 pixels) { _occlusionCullingPixels = pixels; }
    UInt32 getOcclusionCullingPixels(void) const { return _occlusionCullingPixels; }
    void   setOcclusionCullingThreshold(UInt32 threshold) { _occlusionCullingThreshold = threshold; }
    UInt32 getOcclusionCullingThreshold(void) const { return _occlusionCullingThreshold; }

    void   setSmallFeatureCulling(bool bVal) { _bSmallFeatureCulling = bVal; }
    bool   getSmallFeatureCulling(void) const { return _bSmallFeatureCulling; }
    void   setSmallFeatureCullingMode(Int32 mode) { _smallFeatureCullingMode = mode; }
    Int32  getSmallFeatureCullingMode(void) const { return _smallFeatureCullingMode; }
    void   setSmallFeaturePixels(Real32 pixels) { _smallFeaturePixels = pixels; }
    Real32 getSmallFeaturePixels(void) const { return _smallFeaturePixels; }
    void   setSmallFeatureThreshold(UInt32 threshold) { _smallFeatureThreshold = threshold; }
    UInt32 getSmallFeatureThreshold(void) const { return _smallFeatureThreshold; }

  protected:
    RenderAction(void);
    RenderAction(const RenderAction &source);

    virtual ResultE start(void);
    virtual ResultE stop(ResultE res);

    virtual std::vector<Functor> *getDefaultEnterFunctors(void);
    virtual std::vector<Functor> *getDefaultLeaveFunctors(void);

  private:
    /// One queued draw call.
    struct DrawItem
    {
        NodePtr     node;
        DrawFunctor functor;
        State      *state;       ///< NULL: a plain item of a material entry
        UInt32      matrixId;    ///< index into _matrices, 0 for none
        UInt32      lightState;  ///< index into _lightStates (local lights)
        Int32       next;        ///< next item of the same material entry
        bool        unsorted;    ///< forces a state change
        bool        lastPass;    ///< deactivate the state after drawing
        bool        transparent;
    };

    /// A material (pass) in an opaque bucket; its items are a linked list.
    struct MatEntry
    {
        Int32     sortKey;
        UInt32    seq;
        Material *material;
        UInt32    pass;
        State    *state;
        bool      lastPass;
        Int32     head;
        Int32     tail;
    };

    /// A transparent item in the bucket of its sort key, at depth z.
    struct TransRef
    {
        Int32  sortKey;
        Real32 z;
        UInt32 seq;
        UInt32 item;
    };

    struct LightInfo
    {
        Light      *light;
        LightChunk *chunk;
        Matrix      matrix;
    };

    struct MatSlot
    {
        Material *material;
        UInt32    pass;
        UInt32    entry;
        UInt32    stamp;
    };

    static std::vector<Functor> *_defaultEnterFunctors;
    static std::vector<Functor> *_defaultLeaveFunctors;
    static RenderAction *_prototype;

    // settings
    bool   _bSortTrans;
    bool   _bZWriteTrans;
    bool   _bLocalLights;
    bool   _bCorrectTwoSidedLighting;
    bool   _bStateSorting;
    bool   _bEffectsPass;
    bool   _bDepthOnlyPass;
    bool   _bRenderDepthPassOnly;
    bool   _bUseGLFinish;
    bool   _bOcclusionCulling;
    Int32  _occlusionCullingMode;
    UInt32 _occlusionCullingPixels;
    UInt32 _occlusionCullingThreshold;
    bool   _bSmallFeatureCulling;
    Int32  _smallFeatureCullingMode;
    Real32 _smallFeaturePixels;
    UInt32 _smallFeatureThreshold;

    // matrices
    UInt32                   _uiMatrixId;
    MatrixStore              _currMatrix;
    std::vector<MatrixStore> _matrixStack;
    std::vector<Matrix>      _matrices;  ///< model-view by matrix id
    Matrix                   _camInverse;
    Matrix                   _camProjTranslate;
    Matrix                   _accMatrix;

    // visibility: plane sets the current node is completely inside of
    std::vector<UInt8> _visibilityStack;

    // the draw tree (storage reused from frame to frame)
    std::vector<DrawItem> _items;
    std::vector<UInt32>   _unsortedOpaque;
    std::vector<UInt32>   _unsortedTrans;
    std::vector<MatEntry> _matEntries;
    std::vector<TransRef> _transRefs;
    std::vector<MatSlot>  _matSlots;
    UInt32                _matSlotsUsed;
    UInt32                _frameStamp;

    // lights
    std::vector<LightInfo>            _lights;
    std::vector<UInt32>               _lightPath;
    std::vector<std::vector<UInt32> > _lightStates;     ///< light paths (local mode)
    std::vector<UInt32>               _lightStateStack; ///< light state per path depth
    UInt32                            _currentLightState;
    UInt32                            _activeLightState;
    UInt32                            _lightEnvDepth;
    UInt32                            _activeLightsMask;
    UInt32                            _activeLightsCount;
    UInt32                            _lightEnvsLightsState;

    // draw phase
    State *_pActiveState;
    UInt32 _activeMatrixId;

    // counters for the statistics
    UInt32 _uiNumMaterialChanges;
    UInt32 _uiNumMatrixChanges;
    UInt32 _uiNumGeometries;
    UInt32 _uiNumTransGeometries;

    friend class Light;

    void   updateTopMatrix(void);
    UInt32 addItem(DrawFunctor &func, State *state, bool unsorted, bool lastPass,
                   bool transparent);
    UInt32 findMatEntry(Material *mat, UInt32 pass);
    void   insertMatSlot(Material *mat, UInt32 pass, UInt32 entry);
    bool   underLightEnv(void) const { return _lightEnvDepth > 0; }

    void activateLights(void);
    void deactivateLights(void);
    void activateLocalLights(UInt32 lightState);
    void applyState(State *state, bool unsorted);
    void updateShader(State *state);
    void drawItem(DrawItem &item, State *state, bool lastPass);
    void drawEntry(const MatEntry &entry);

    void operator=(const RenderAction &source);
};

typedef RenderAction *RenderActionP;

OSG_END_NAMESPACE

#endif
