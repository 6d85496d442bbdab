// The droplet-flow scenes: droplets running down a tilted checkered board
// and over a checkered ball, each simulated on the GPU by a
// DropletFlowViewport of its own.
//
// The simulations' clock is the viewports' `time` field, moved by one tick
// delay per frame, so every frame is one time step and the picture after a
// given number of steps is the same on any machine, however fast.
#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/DropletUtils.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDropletFlowViewport.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

const double TickDelay = 0.01;
/// Steps of the single picture, and of the four pictures of the series.
const UInt32 StepsShown     = 160;
const UInt32 SeriesSteps[4] = {20, 60, 110, 160};

/// A new batch of droplets falls every so many steps.
const UInt32 BatchEvery = 30;

/// Where droplets fall on one object, in its map space.
struct Rain
{
    Real32 u0, u1, v0, v1, size0, size1;
    int    count;
};

/// Batch `index` of a rain: a fixed little generator, so the shower is the
/// same on every machine.
std::vector<Vec3f> batch(const Rain &rain, UInt32 index)
{
    UInt32 seed   = 12345u + 977u * index;
    auto   random = [&seed](Real32 lo, Real32 hi) {
        seed = seed * 1664525u + 1013904223u;
        return lo + (hi - lo) * Real32(seed >> 8) / Real32(1u << 24);
    };
    std::vector<Vec3f> drops;
    for(int i = 0; i < rain.count; ++i)
    {
        const Real32 u = random(rain.u0, rain.u1);
        const Real32 v = random(rain.v0, rain.v1);
        drops.push_back(Vec3f(u, v, random(rain.size0, rain.size1)));
    }
    return drops;
}

/// The objects, their light, the camera and one simulation per object,
/// driven frame by frame.
class Shower
{
  public:
    explicit Shower(Holder &h) : _h(h), _steps(0) {}

    /// The board and the ball side by side, or the board alone, close up.
    bool open(UInt32 width, UInt32 height, bool boardOnly)
    {
        _win = openWindow(_h, width, height);
        if(_win == NullFC)
            return false;
        _action.reset(RenderAction::create());

        NodePtr lightBeacon = Node::create();
        beginEditCP(lightBeacon);
        lightBeacon->setCore(Group::create());
        endEditCP(lightBeacon);
        DirectionalLightPtr sun = DirectionalLight::create();
        beginEditCP(sun);
        sun->setDirection(Vec3f(-0.5f, 0.8f, 0.7f));
        sun->setAmbient(Color4f(0.3f, 0.3f, 0.32f, 1.f));
        sun->setDiffuse(Color4f(1.f, 0.97f, 0.92f, 1.f));
        sun->setSpecular(Color4f(1.f, 1.f, 1.f, 1.f));
        sun->setBeacon(lightBeacon);
        endEditCP(sun);

        _root = _h.keep(Node::create());
        beginEditCP(_root);
        _root->setCore(sun);
        _root->addChild(lightBeacon);
        endEditCP(_root);

        // a board leaning back, droplets falling along its upper part
        Quaternion lean;
        lean.setValueAsAxisDeg(1.f, 0.f, 0.f, -50.f);
        addWetObject(makePlane(2.4f, 2.4f, 32, 32), Vec3f(boardOnly ? 0.f : -1.35f, 0.f, 0.f),
                     lean, Color3f(0.85f, 0.4f, 0.12f),
                     Rain{0.08f, 0.92f, 0.72f, 0.92f, 0.04f, 0.07f, 6});

        if(boardOnly)
        {
            _camera = makeCamera(_h, _root, Pnt3f(0.f, 1.2f, 3.f), Pnt3f(0.f, -0.1f, 0.f), 45.f);
        }
        else
        {
            // a ball, its unwrap's seam (u = 0) turned to the back; the map
            // spans the whole way round, so droplets come out wide
            Quaternion turn;
            turn.setValueAsAxisDeg(0.f, 1.f, 0.f, 180.f);
            addWetObject(makeLatLongSphere(64, 128, 0.95f), Vec3f(1.35f, 0.1f, 0.f), turn,
                         Color3f(0.2f, 0.45f, 0.3f),
                         Rain{0.36f, 0.64f, 0.72f, 0.86f, 0.025f, 0.04f, 4});
            _camera = makeCamera(_h, _root, Pnt3f(0.f, 1.3f, 5.3f), Pnt3f(0.f, -0.05f, 0.f), 45.f);
        }
        _background = makeSolid(_h, Color3f(0.12f, 0.13f, 0.16f));
        // the noise of the projected maps comes from rand
        std::srand(1);
        return true;
    }

    /// Runs the simulations until `steps` steps are done, drawing nothing
    /// but their passes.
    void runTo(UInt32 steps)
    {
        while(_steps < steps)
        {
            advance();
            _win->render(_action.get());
        }
    }

    /// Shows the objects in a port of their own for the next frames.
    void show(void)
    {
        _view = addPort(_h, _win, _camera, _root, _background, 0.f, 1.f);
    }

    /// The next step, shown and read back (bottom row first, RGB).
    std::vector<UInt8> grabStep(void)
    {
        show();
        advance();
        _win->render(_action.get());
        std::vector<UInt8> pixels(_win->getWidth() * _win->getHeight() * 3);
        _win->readPixels(0, 0, _win->getWidth(), _win->getHeight(), GL_RGB, GL_UNSIGNED_BYTE,
                         &pixels[0]);
        _win->subPort(_view);
        return pixels;
    }

    EGLWindowPtr window(void) const { return _win; }

  private:
    /// An object with a checker of colour c, placed in the scene, wetted by
    /// a simulation of its own whose port comes before the view, so the
    /// view sees this frame's step.
    void addWetObject(NodePtr object, const Vec3f &at, const Quaternion &rotation, Color3f c,
                      const Rain &rain)
    {
        _h.keep(object);
        DropletUtils::the()->calcTangents(object, 1);

        TextureChunkPtr checker = TextureChunk::create();
        beginEditCP(checker);
        checker->setImage(makeChecker(256, 16, Color3f(0.95f, 0.92f, 0.85f), c));
        checker->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
        endEditCP(checker);

        ChunkMaterialPtr wet = _h.keep(ChunkMaterial::create());
        beginEditCP(wet);
        wet->addChunk(checker);
        endEditCP(wet);
        setMaterial(object, wet);

        beginEditCP(_root, Node::ChildrenFieldMask);
        _root->addChild(placed(_h, object, at, rotation));
        endEditCP(_root, Node::ChildrenFieldMask);

        DropletFlowViewportPtr flow = _h.keep(DropletFlowViewport::create());
        beginEditCP(flow);
        flow->setRoot(object);
        flow->setMaterial(wet);
        flow->setMatMode(2);
        flow->setSurfaceMapSize(Vec2f(256.f, 256.f));
        flow->setTimeDelay(TickDelay);
        flow->setForce(Vec3f(0.f, -1.f, 0.f));
        flow->setFluidColor(Color4f(0.15f, 0.35f, 0.95f, 0.85f));
        flow->setPerturbAngle(0.2f);
        endEditCP(flow);
        _win->addPort(flow);

        _flows.push_back(flow);
        _rains.push_back(rain);
    }

    /// One tick of the clock for the next frame, and a new batch of
    /// droplets now and then.
    void advance(void)
    {
        for(size_t i = 0; i < _flows.size(); ++i)
        {
            DropletFlowViewportPtr flow = _flows[i];
            beginEditCP(flow, DropletFlowViewport::TimeFieldMask);
            flow->setTime(flow->getTime() + TickDelay);
            endEditCP(flow, DropletFlowViewport::TimeFieldMask);

            if(_steps % BatchEvery != 0)
                continue;

            std::vector<Vec3f> drops = batch(_rains[i], _steps / BatchEvery);
            beginEditCP(flow, DropletFlowViewport::SourcesFieldMask);
            flow->getSources().clear();
            for(size_t k = 0; k < drops.size(); ++k)
                flow->getSources().push_back(drops[k]);
            endEditCP(flow, DropletFlowViewport::SourcesFieldMask);
        }
        ++_steps;
    }

    Holder                             &_h;
    EGLWindowPtr                        _win;
    std::unique_ptr<RenderAction>       _action;
    NodePtr                             _root;
    std::vector<DropletFlowViewportPtr> _flows;
    std::vector<Rain>                   _rains;
    PerspectiveCameraPtr                _camera;
    BackgroundPtr                       _background;
    ViewportPtr                         _view;
    UInt32                              _steps;
};

// The simulation needs a few frames of its own before the first step: one
// creates it, one projects the ball and starts it, and the fields set
// beforehand (material, map size) rebuild it once more. The step count
// above starts from the first frame either way, so it stays fixed.

bool renderDroplets(const char *fileName, UInt32 width, UInt32 height)
{
    Holder h;
    Shower shower(h);
    if(!shower.open(width, height, false))
        return false;

    shower.runTo(StepsShown - 1);
    shower.show();
    return renderToFile(h, shower.window(), fileName);
}

/// Four moments of the shower on the board, close up, in a 2 x 2 grid,
/// left to right and top to bottom.
bool renderDropletSeries(const char *fileName, UInt32 width, UInt32 height)
{
    const UInt32 tileW = width / 2, tileH = height / 2;
    if(tileW == 0 || tileH == 0)
    {
        FWARNING(("renderDropletSeries: %ux%u is too small for four pictures\n", width, height));
        return false;
    }

    Holder h;
    Shower shower(h);
    if(!shower.open(tileW, tileH, true))
        return false;

    ImagePtr grid = h.keep(Image::create());
    grid->set(Image::OSG_RGB_PF, Int32(width), Int32(height));
    UInt8 *out = grid->getData();

    for(UInt32 k = 0; k < 4; ++k)
    {
        shower.runTo(SeriesSteps[k] - 1);
        std::vector<UInt8> tile = shower.grabStep();

        // rows run bottom first: the first two pictures go to the upper half
        const UInt32 x0 = (k % 2) * tileW, y0 = (k < 2 ? 1 : 0) * tileH;
        for(UInt32 y = 0; y < tileH; ++y)
            std::copy(&tile[y * tileW * 3], &tile[(y + 1) * tileW * 3],
                      out + ((y0 + y) * width + x0) * 3);
    }

    if(!grid->write(fileName))
    {
        FWARNING(("renderDropletSeries: can't write %s\n", fileName));
        return false;
    }
    return true;
}

const DemoSceneRegistration dropletsScene(
    "droplets", "droplets running down a tilted board and a ball (GPU droplet flow)",
    renderDroplets);
const DemoSceneRegistration dropletSeriesScene(
    "droplets-series", "four moments of droplets running down the board, 2 x 2", renderDropletSeries);

} // namespace
