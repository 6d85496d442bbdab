#include <OpenSG/OSGDropletFlowViewport.h>

#include <OpenSG/DropletFlow.h>
#include <OpenSG/DropletPlacer.h>
#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGWindow.h>

#include <sys/time.h>

#include <cstdlib>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

/// A map edge from a field value, truncated; values that are not a number
/// or don't fit an int come out as 0 or as an edge no GL allows, so that
/// the range checks refuse them instead of the conversion going wrong.
int mapEdge(Real32 value)
{
    if(!(value > -1.f))
        return value < 0.f ? -1 : 0;
    return value < 1e9f ? int(value) : 1000000000;
}

double wallClock(void)
{
    struct timeval now;
    gettimeofday(&now, NULL);
    return double(now.tv_sec) + double(now.tv_usec) / 1e6;
}

/// Tells the application when its object can't carry a film: the unwrap
/// (texture unit 0) places the fluid, the tangents (unit 1) orient it.
void checkSurface(NodePtr root)
{
    std::vector<GeometryPtr> geometries;
    DropletUtils::the()->collectGeometry(root, geometries);

    bool unwrapped = false;
    bool tangents  = false;

    for(size_t i = 0; i < geometries.size(); ++i)
    {
        unwrapped = unwrapped || geometries[i]->getTexCoords() != NullFC;
        tangents  = tangents || geometries[i]->getTexCoords1() != NullFC;
    }

    if(!unwrapped)
    {
        SWARNING << "DropletFlowViewport: no geometry below root has texture coordinates; "
                    "the fluid has no surface to run on"
                 << std::endl;
    }
    else if(!tangents)
    {
        SWARNING << "DropletFlowViewport: no geometry below root has tangents in texture "
                    "unit 1 (DropletUtils::calcTangents); the fluid has no direction to run"
                 << std::endl;
    }
}

} // namespace

DropletFlowViewport::DropletFlowViewport(void) : Inherited()
{
}

// A copy starts without a simulation of its own.
DropletFlowViewport::DropletFlowViewport(const DropletFlowViewport &source) : Inherited(source)
{
}

DropletFlowViewport::~DropletFlowViewport(void)
{
}

void DropletFlowViewport::onDestroy(void)
{
    deleteFlow();
    Inherited::onDestroy();
}

void DropletFlowViewport::initMethod(void)
{
}

void DropletFlowViewport::changed(BitVector whichField, UInt32 origin)
{
    _changedMask |= whichField;
    _setupRefused = false;
    Inherited::changed(whichField, origin);
}

void DropletFlowViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DropletFlowViewport NI" << std::endl;
}

void DropletFlowViewport::deleteFlow(void)
{
    delete _flow;
    _flow    = NULL;
    _started = false;
}

void DropletFlowViewport::updateRenderMode(bool render, bool clear)
{
    _renderSources = render;
    _clearSurface  = clear;
}

// --- the frame ---------------------------------------------------------------------

void DropletFlowViewport::render(RenderActionBase *action)
{
    if(!getEnabled() || action == NULL || action->getWindow() == NULL)
        return;

    initialize();

    // The passes run in the window this port belongs to; a port rendered
    // by hand, outside any window's list, uses the action's.
    WindowPtr window = getParent();
    if(window == NullFC)
        window = WindowPtr(action->getWindow());

    _utils->updateWindowState(window, action);

    if(_flow == NULL)
    {
        // The first step comes next frame.
        if(getRoot() != NullFC && !_setupRefused)
            _setupRefused = !setupDropletFlow(getRoot());
        return;
    }

    if(!_started)
    {
        // The simulation's framebuffer objects were made after this
        // frame's frameInit: their entry points must be known before the
        // first projection.
        action->getWindow()->frameInit();

        _flow->updateProjectedMaps(getPerturbAngle());
        _flow->getTimer()->setCurrentTime(getTime());
        _flow->getTimer()->setActive(!getPause());
        _started = true;
    }

    _flow->updateSceneTransform();

    if(_renderSources)
    {
        _flow->getPlacer()->render(_clearSurface);
        _renderSources = false;
    }

    _flow->update();
}

bool DropletFlowViewport::setupDropletFlow(NodePtr root)
{
    if(getMaterial() == NullFC)
    {
        SWARNING << "DropletFlowViewport: no material to show the fluid in; "
                    "waiting for one"
                 << std::endl;
        return false;
    }

    const int width  = mapEdge(getSurfaceMapSize()[0]);
    const int height = mapEdge(getSurfaceMapSize()[1]);

    GLint maxSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);

    if(width <= 0 || height <= 0 || (maxSize > 0 && (width > maxSize || height > maxSize)))
    {
        SWARNING << "DropletFlowViewport: a surface map of " << getSurfaceMapSize()[0]
                 << " x " << getSurfaceMapSize()[1] << " texels is out of range (1 to "
                 << maxSize << "); waiting for a new size" << std::endl;
        return false;
    }

    TextureChunkPtr texture = NullFC;

    if(getMatMode() == 0)
    {
        if(!getTextures().empty())
            texture = getTextures(0);

        if(texture == NullFC)
        {
            SNOTICE << "DropletFlowViewport: matMode 0 without a texture in textures; "
                       "the surface map is made here and added to the material"
                    << std::endl;
        }
        else if(texture->getImage() == NullFC || texture->getImage()->getWidth() <= 0 ||
                texture->getImage()->getHeight() <= 0)
        {
            SWARNING << "DropletFlowViewport: textures[0] has no image to take the "
                        "surface map's size from; waiting for one"
                     << std::endl;
            return false;
        }
    }

    checkSurface(root);

    _flow = new DropletFlow(root, getMaterial(), width, height, getMatMode(), texture);

    _flow->getTimer()->setCurrentTime(getTime());
    _flow->rebuildNoiseMap(mapEdge(getNoiseMapSize()[0]), mapEdge(getNoiseMapSize()[1]));
    _flow->getPlacer()->rebuildShapeMap(getContactAngle());
    _flow->setForce(getForce());
    _flow->setFlowParams(float(getTimeDelay()), float(getTimeStep()), getFluidDensity(),
                         getFluidViscosity(), getFrictionN(), getFrictionSigma());
    _flow->setDisplayParams(Vec4f(getFluidColor().red(), getFluidColor().green(),
                                  getFluidColor().blue(), getFluidColor().alpha()));

    // Only the variable's presence counts, whatever its value.
    if(std::getenv("DEBUG_DROPFLOW") != NULL)
        addDebugPlanes(root);

    updateRenderMode(false, false);

    return true;
}

void DropletFlowViewport::addDebugPlanes(NodePtr root)
{
    NodePtr top = root;
    while(top->getParent() != NullFC)
        top = top->getParent();

    TextureChunkPtr shown[6] = {_flow->getSurfaceMap(0),
                                _flow->getSurfaceMap(1),
                                _flow->getPlacer()->getShapeMap(),
                                _flow->getNormalMap(),
                                _flow->getTangentMap(),
                                _flow->getNoiseMap()};

    beginEditCP(top, Node::ChildrenFieldMask);
    for(int i = 0; i < 6; ++i)
        top->addChild(_flow->dbgCreatePlane(shown[i], -10.f + 5.f * Real32(i)));
    endEditCP(top, Node::ChildrenFieldMask);
}

void DropletFlowViewport::initialize(void)
{
    if(_utils == NULL)
        _utils = DropletUtils::the();

    // Changes stay collected until the simulation runs.
    if(_flow == NULL || !_started)
        return;

    if(_changedMask == 0 && !getDirty())
        return;

    const BitVector rebuild = TexturesFieldMask | MaterialFieldMask | SurfaceMapSizeFieldMask;

    if(_changedMask & rebuild)
    {
        // The next render builds a new simulation from the current fields;
        // the other collected changes wait for it.
        deleteFlow();
        _changedMask &= ~rebuild;
        return;
    }

    Timer *timer = _flow->getTimer();

    if(_changedMask & TimeFieldMask)
    {
        timer->setCurrentTime(getTime());
    }
    else if(getDirty())
    {
        // A pulse without a new time moves the simulation onto the wall
        // clock; restarting on the first such pulse keeps the jump of the
        // clock from counting as elapsed time.
        const double previous = timer->getCurrentTime();
        timer->setCurrentTime(wallClock());
        if(previous == getTime() && !getPause())
            timer->restart();
    }

    const BitVector flowParams = TimeStepFieldMask | TimeDelayFieldMask |
                                 FluidDensityFieldMask | FluidViscosityFieldMask |
                                 FrictionNFieldMask | FrictionSigmaFieldMask;

    if(_changedMask & flowParams)
    {
        _flow->setFlowParams(float(getTimeDelay()), float(getTimeStep()), getFluidDensity(),
                             getFluidViscosity(), getFrictionN(), getFrictionSigma());
    }

    if(_changedMask & (PerturbAngleFieldMask | NoiseMapSizeFieldMask))
    {
        _flow->rebuildNoiseMap(mapEdge(getNoiseMapSize()[0]), mapEdge(getNoiseMapSize()[1]));
        _flow->updateProjectedMaps(getPerturbAngle());
    }

    if(_changedMask & ContactAngleFieldMask)
        _flow->getPlacer()->rebuildShapeMap(getContactAngle());

    if(_changedMask & FluidColorFieldMask)
    {
        _flow->setDisplayParams(Vec4f(getFluidColor().red(), getFluidColor().green(),
                                      getFluidColor().blue(), getFluidColor().alpha()));
    }

    if(_changedMask & ForceFieldMask)
        _flow->setForce(getForce());

    if(_changedMask & SourcesFieldMask)
    {
        DropletPlacer *placer = _flow->getPlacer();
        placer->clear();

        bool outside = false;

        for(UInt32 i = 0; i < getSources().size(); ++i)
        {
            const Vec3f &s = getSources(i);
            outside        = outside || s[0] < 0.f || s[0] > 1.f || s[1] < 0.f || s[1] > 1.f;
            placer->addSource(DropletSource(s[0], s[1], s[2], 1.0f));
        }

        if(outside)
        {
            SWARNING << "DropletFlowViewport: sources outside the 0..1 map space add only "
                        "what overlaps the map"
                     << std::endl;
        }

        // An emptied list wipes the fluid; a filled one adds to it.
        if(getSources().empty())
            updateRenderMode(true, true);
        else
            updateRenderMode(true, false);
    }

    if(_changedMask & PauseFieldMask)
        timer->setActive(!getPause());

    DropletFlowViewportPtr self(this);
    beginEditCP(self, DirtyFieldMask);
    setDirty(false);
    endEditCP(self, DirtyFieldMask);

    _changedMask = 0;
}

OSG_END_NAMESPACE
