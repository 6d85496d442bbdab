#include <OpenSG/OSGVolumeViewport.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/VolumeNodeHandler.h>

#include <algorithm>
#include <cstdlib>

OSG_BEGIN_NAMESPACE

namespace
{

// the first viewport of the process puts its debugging tiles on the right,
// every later one on the left
bool firstViewportTiles = true;

const BitVector AllPixelFields = Viewport::LeftFieldMask | Viewport::RightFieldMask |
                                 Viewport::BottomFieldMask | Viewport::TopFieldMask;

/// Places a viewport's pixel rectangle at the origin, width x height.
void placePixels(const ViewportPtr &port, Int32 width, Int32 height)
{
    beginEditCP(port, AllPixelFields);
    port->setLeft(0.f);
    port->setBottom(0.f);
    port->setRight(Real32(width - 1));
    port->setTop(Real32(height - 1));
    endEditCP(port, AllPixelFields);
}

/// Gives a texture an empty image of width x height in the given format.
void setTargetImage(const TextureChunkPtr &texture, UInt32 imageFormat, Int32 width, Int32 height)
{
    ImagePtr image = texture->getImage();
    beginEditCP(image);
    image->set(imageFormat, width, height, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    endEditCP(image);
}

/// A render target's texture: an image of the viewport's size, nearest
/// filtering, no mipmaps.
TextureChunkPtr makeTargetTexture(UInt32 imageFormat, GLenum internalFormat,
                                  GLenum externalFormat, Int32 width, Int32 height)
{
    ImagePtr        image   = Image::create();
    TextureChunkPtr texture = TextureChunk::create();
    addRefCP(texture);
    beginEditCP(texture);
    texture->setImage(image);
    texture->setInternalFormat(internalFormat);
    if(externalFormat != GL_NONE)
        texture->setExternalFormat(externalFormat);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    texture->setTarget(GL_TEXTURE_2D);
    endEditCP(texture);
    setTargetImage(texture, imageFormat, width, height);
    return texture;
}

/// Sizes a target's pixel rectangle and storage to width x height and
/// asks it to re-create its buffers.
void sizeTarget(const FBOViewportPtr &target, Int32 width, Int32 height)
{
    beginEditCP(target);
    target->setLeft(0.f);
    target->setBottom(0.f);
    target->setRight(Real32(width - 1));
    target->setTop(Real32(height - 1));
    target->setStorageWidth(width);
    target->setStorageHeight(height);
    target->setFboOn(true);
    target->setDirty(true);
    endEditCP(target);
}

FBOViewportPtr makeTarget(const CameraPtr &camera, const BackgroundPtr &background,
                          const TextureChunkPtr &texture, const TextureChunkPtr &depth,
                          Int32 width, Int32 height)
{
    FBOViewportPtr target = FBOViewport::create();
    addRefCP(target);
    beginEditCP(target);
    target->setCamera(camera);
    target->setBackground(background);
    target->getTextures().push_back(texture);
    if(depth != NullFC)
    {
        target->getTextures().push_back(depth);
        target->setGenDepthmaps(true);
    }
    endEditCP(target);
    sizeTarget(target, width, height);
    return target;
}

BackgroundPtr makeClear(Real32 depth)
{
    SolidBackgroundPtr background = SolidBackground::create();
    beginEditCP(background);
    background->setColor(Color3f(0.f, 0.f, 0.f));
    background->setAlpha(0.f);
    background->setDepth(depth);
    endEditCP(background);
    return background;
}

void setTargetRoot(const FBOViewportPtr &target, const NodePtr &root)
{
    beginEditCP(target, Viewport::RootFieldMask);
    target->setRoot(root);
    endEditCP(target, Viewport::RootFieldMask);
}

void setTargetParent(const FBOViewportPtr &target, const WindowPtr &parent)
{
    beginEditCP(target, Viewport::ParentFieldMask);
    target->setParent(parent);
    endEditCP(target, Viewport::ParentFieldMask);
}

VolumeNode *volumeNodeOf(const NodeCorePtr &core)
{
    return dynamic_cast<VolumeNode *>(getCPtr(core));
}

} // namespace

VolumeViewport::VolumeViewport(void) : Inherited()
{
}

// a copy (every create() is one) starts with no targets of its own
VolumeViewport::VolumeViewport(const VolumeViewport &source) : Inherited(source)
{
}

VolumeViewport::~VolumeViewport(void)
{
    const FieldContainerPtr held[] = {_sceneColorTexture, _sceneDepthTexture, _frontTexture,
                                      _backTexture,       _frontFBO,          _backFBO,
                                      _sceneFBO,          _frontForeground,   _backForeground,
                                      _sceneColorForeground, _sceneDepthForeground};
    for(const FieldContainerPtr &p : held)
        if(p != NullFC)
            subRefCP(p);
    delete _frontAction;
    delete _backAction;
}

void VolumeViewport::initMethod(void)
{
}

void VolumeViewport::changed(BitVector whichField, UInt32 origin)
{
    _changes |= whichField;
    Inherited::changed(whichField, origin);
}

void VolumeViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeViewport NI" << std::endl;
}

void VolumeViewport::render(RenderActionBase *action)
{
    if(getEnabled() && action != NULL)
        renderVolumes(action);
}

bool VolumeViewport::initialize(void)
{
    if(_initialized && !(_changes & (VolumeNodesFieldMask | CameraFieldMask |
                                     BackgroundFieldMask | RootFieldMask)))
    {
        _changes = 0;
        return true;
    }

    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *node = volumeNodeOf(getVolumeNodes()[i]);
        if(node == NULL)
            return false;
        if(node->getVolume() == NULL && !node->createVolume())
            return false;
    }

    SLOG << "VolumeViewport::initialize()" << std::endl;

    WindowPtr window = getParent();
    const Int32 width  = window != NullFC ? window->getWidth() : 1;
    const Int32 height = window != NullFC ? window->getHeight() : 1;
    placePixels(VolumeViewportPtr(this), width, height);
    activateSize();

    delete _frontAction;
    delete _backAction;
    _frontAction = RenderAction::create();
    _frontAction->setFrustumCulling(false);
    _frontAction->setZWriteTrans(true);
    _backAction = RenderAction::create();
    _backAction->setFrustumCulling(false);
    _backAction->setZWriteTrans(true);

    // a re-run after a change assigns over the former objects: they stay
    // allocated, as the tiles already standing in a port may still show them
    const Int32 w = getPixelWidth(), h = getPixelHeight();
    _sceneColorTexture = makeTargetTexture(GL_RGBA, GL_RGBA16F_ARB, GL_NONE, w, h);
    _sceneDepthTexture = makeTargetTexture(GL_LUMINANCE, GL_DEPTH_COMPONENT24,
                                           GL_DEPTH_COMPONENT, w, h);
    _sceneFBO          = makeTarget(getCamera(), getBackground(), _sceneColorTexture,
                                    _sceneDepthTexture, w, h);
    setTargetRoot(_sceneFBO, getRoot());
    BackgroundPtr front = makeClear(1.f);
    _frontTexture       = makeTargetTexture(GL_RGBA, GL_RGBA32F_ARB, GL_NONE, w, h);
    _frontFBO           = makeTarget(getCamera(), front, _frontTexture, NullFC, w, h);
    BackgroundPtr back  = makeClear(0.f);
    _backTexture        = makeTargetTexture(GL_RGBA, GL_RGBA32F_ARB, GL_NONE, w, h);
    _backFBO            = makeTarget(getCamera(), back, _backTexture, NullFC, w, h);

    initPolygonForegrounds();

    if(getVolumeNodes().empty())
        return false;
    bool served = false;
    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *node = volumeNodeOf(getVolumeNodes()[i]);
        if(node != NULL && node->getVolume() != NULL && fitsTextureLimit(node))
            served = serveVolume(node) || served;
    }
    if(!served)
        return false;
    _changes = 0;
    return true;
}

bool VolumeViewport::serveVolume(VolumeNode *node)
{
    VolumeNodeHandler *handler = node->getVolume();
    node->initVolume();
    FNOTICE(("Initializing Textures and Fbo's...\n"));
    handler->setFrontAndBackTexture(_frontTexture, _backTexture);
    handler->setSceneTextures(_sceneColorTexture, _sceneDepthTexture);
    beginEditCP(_sceneFBO);
    _sceneFBO->getExcludeNodes().clear();
    _sceneFBO->getExcludeNodes().push_back(handler->getRaycasterNode());
    endEditCP(_sceneFBO);
    node->attachVolume();
    return true;
}

bool VolumeViewport::fitsTextureLimit(VolumeNode *node)
{
    TextureChunkPtr voxels = node->getVoxels();
    ImagePtr        image  = voxels != NullFC ? voxels->getImage() : ImagePtr(NullFC);
    if(image == NullFC)
        return true;
    GLint limit = 0;
    glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &limit);
    const Int32 largest =
        std::max(image->getWidth(), std::max(image->getHeight(), image->getDepth()));
    if(limit <= 0 || largest <= limit)
        return true;
    // said once per handler: the ray caster of a refused volume never
    // enters the scene, so every frame comes here again
    NodePtr raycaster = node->getVolume()->getRaycasterNode();
    if(std::find(_refused.begin(), _refused.end(), raycaster) == _refused.end())
    {
        _refused.push_back(raycaster);
        SWARNING << "VolumeViewport: a volume of " << image->getWidth() << " x "
                 << image->getHeight() << " x " << image->getDepth()
                 << " voxels is larger than the 3-D texture limit of " << limit
                 << " and is not drawn" << std::endl;
    }
    return false;
}

void VolumeViewport::initPolygonForegrounds(void)
{
    const TextureChunkPtr textures[4] = {_frontTexture, _backTexture, _sceneColorTexture,
                                         _sceneDepthTexture};
    PolygonForegroundPtr *tiles[4] = {&_frontForeground, &_backForeground,
                                      &_sceneColorForeground, &_sceneDepthForeground};
    const Real32 x0 = firstViewportTiles ? 0.75f : 0.f;
    for(int i = 0; i < 4; ++i)
    {
        ChunkMaterialPtr material = ChunkMaterial::create();
        beginEditCP(material);
        material->addChunk(textures[i], State::AutoSlotReplace);
        endEditCP(material);

        PolygonForegroundPtr tile = PolygonForeground::create();
        addRefCP(tile);
        beginEditCP(tile);
        tile->setMaterial(material);
        tile->getTexCoords().push_back(Vec3f(0.f, 0.f, 0.f));
        tile->getTexCoords().push_back(Vec3f(1.f, 0.f, 0.f));
        tile->getTexCoords().push_back(Vec3f(1.f, 1.f, 0.f));
        tile->getTexCoords().push_back(Vec3f(0.f, 1.f, 0.f));
        const Real32 y0 = Real32(i) / 4.f, y1 = Real32(i + 1) / 4.f;
        tile->getPositions().push_back(Pnt2f(x0, y0));
        tile->getPositions().push_back(Pnt2f(x0 + 0.25f, y0));
        tile->getPositions().push_back(Pnt2f(x0 + 0.25f, y1));
        tile->getPositions().push_back(Pnt2f(x0, y1));
        tile->setNormalizedX(true);
        tile->setNormalizedY(true);
        endEditCP(tile);
        *tiles[i] = tile;
    }
    firstViewportTiles = false;
}

void VolumeViewport::resize(int width, int height)
{
    if(width == getPixelWidth() && height == getPixelHeight())
        return;
    SNOTICE << "VolumeViewport::resize(" << width << ", " << height << ")" << std::endl;

    placePixels(VolumeViewportPtr(this), width, height);

    const TextureChunkPtr textures[4] = {_sceneColorTexture, _sceneDepthTexture, _frontTexture,
                                         _backTexture};
    const UInt32 formats[4] = {GL_RGBA, GL_LUMINANCE, GL_RGBA, GL_RGBA};
    for(int i = 0; i < 4; ++i)
    {
        if(textures[i] == NullFC)
            continue;
        setTargetImage(textures[i], formats[i], width, height);
        beginEditCP(textures[i]);
        textures[i]->imageContentChanged(-1, -1, -1, -1);
        endEditCP(textures[i]);
    }
    const FBOViewportPtr targets[3] = {_sceneFBO, _frontFBO, _backFBO};
    for(const FBOViewportPtr &target : targets)
        if(target != NullFC)
            sizeTarget(target, width, height);

    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *node = volumeNodeOf(getVolumeNodes()[i]);
        if(node == NULL || node->getVolume() == NULL)
            continue;
        node->getVolume()->setFrontAndBackTexture(_frontTexture, _backTexture);
        node->getVolume()->setSceneTextures(_sceneColorTexture, _sceneDepthTexture);
    }
}

void VolumeViewport::renderTarget(const FBOViewportPtr &target, RenderActionBase *action)
{
    setTargetParent(target, getParent());
    target->render(action);
    setTargetParent(target, NullFC);
}

void VolumeViewport::renderVolumes(RenderActionBase *action)
{
    Window       *window = action->getWindow();
    RenderAction *ra     = dynamic_cast<RenderAction *>(action);
    if(getVolumeNodes().empty() || ra == NULL || window == NULL)
        return;

    const bool ready = initialize();
    if(!_initialized)
    {
        // the first successful frame only sets up; the new targets need the
        // window's extension table refreshed before they render
        if(ready)
        {
            window->frameInit();
            _initialized = true;
        }
        return;
    }

    if(window->getPort().empty())
        return;
    ViewportPtr port = window->getPort().back();
    resize(port->getPixelWidth(), port->getPixelHeight());

    const bool culling = ra->getFrustumCulling();
    ra->setFrustumCulling(false);

    CameraPtr camera = getCamera();
    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *node = volumeNodeOf(getVolumeNodes()[i]);
        if(node == NULL || node->getVolume() == NULL || !fitsTextureLimit(node))
            continue;
        VolumeNodeHandler *handler = node->getVolume();
        // new voxels since the set-up bring a new handler: its ray caster
        // is not in the scene yet
        if(handler->getRaycasterNode() != NullFC && !node->getParents().empty() &&
           handler->getRaycasterNode()->getParent() == NullFC)
            serveVolume(node);
        node->initVolume();
        setTargetRoot(_frontFBO, handler->getFrontPositionScenegraphRoot());
        setTargetRoot(_backFBO, handler->getBackPositionScenegraphRoot());

        Matrix toCamera;
        if(camera != NullFC && camera->getBeacon() != NullFC)
            camera->getBeacon()->getToWorld(toCamera);
        NodePtr raycaster = handler->getRaycasterNode();
        if(raycaster == NullFC)
            continue;
        Matrix toVolume;
        raycaster->getToWorld(toVolume);
        Matrix viewToVolume;
        viewToVolume.invertFrom(toVolume);
        viewToVolume.mult(toCamera);

        NodePtr frontTransform = handler->getFrontTransformNode();
        if(frontTransform != NullFC && frontTransform->getCore() != NullFC)
        {
            const NodePtr transforms[2] = {frontTransform, handler->getBackTransformNode()};
            for(const NodePtr &n : transforms)
            {
                TransformPtr t = TransformPtr::dcast(n->getCore());
                if(t == NullFC)
                    continue;
                beginEditCP(t, Transform::MatrixFieldMask);
                t->setMatrix(toVolume);
                endEditCP(t, Transform::MatrixFieldMask);
            }
            SHLChunkPtr nearPlane = handler->getNearPlaneShader();
            beginEditCP(nearPlane, SHLChunk::ParametersFieldMask);
            nearPlane->setUniformParameter("viewToVolume", viewToVolume);
            endEditCP(nearPlane, SHLChunk::ParametersFieldMask);
        }
        SHLChunkPtr backShader = handler->getBackPositionShader();
        if(backShader != NullFC && camera != NullFC)
        {
            beginEditCP(backShader, SHLChunk::ParametersFieldMask);
            backShader->setUniformParameter("depthRange",
                                            Vec2f(camera->getNear(), camera->getFar()));
            endEditCP(backShader, SHLChunk::ParametersFieldMask);
        }
    }

    renderTarget(_sceneFBO, action);

    if(getenv("DEBUG_VOLUME") != NULL && _frontForeground != NullFC &&
       _backForeground != NullFC && _sceneColorForeground != NullFC &&
       _sceneDepthForeground != NullFC)
    {
        MFForegroundPtr &foregrounds = port->getForegrounds();
        const ForegroundPtr tiles[4] = {_frontForeground, _backForeground, _sceneColorForeground,
                                        _sceneDepthForeground};
        bool present = false;
        for(const ForegroundPtr &tile : tiles)
            present = present ||
                      std::find(foregrounds.begin(), foregrounds.end(), tile) != foregrounds.end();
        beginEditCP(port, Viewport::ForegroundsFieldMask);
        if(!present)
            for(const ForegroundPtr &tile : tiles)
                foregrounds.push_back(tile);
        endEditCP(port, Viewport::ForegroundsFieldMask);
    }

    _frontAction->setWindow(window);
    renderTarget(_frontFBO, _frontAction);
    _backAction->setWindow(window);
    renderTarget(_backFBO, _backAction);

    ra->setFrustumCulling(culling);
}

OSG_END_NAMESPACE
