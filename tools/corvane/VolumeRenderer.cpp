#include "VolumeRenderer.h"
#include "Args.h"
#include "DemoSupport.h"
#include "../makevolumes/VolumeShapes.h"

#include <OpenSG/OSGComposableVolumeShadingStyle.h>
#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeViewport.h>
#include <OpenSG/SimpleTransferfunction.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

OSG_USING_NAMESPACE

namespace corvane
{

namespace
{

/// A progress bar on standard error, one line rewritten in place.
class Progress
{
  public:
    explicit Progress(bool on) : _on(on) {}
    ~Progress(void) { done(); }
    void step(int percent, const char *what)
    {
        if(!_on)
            return;
        const int filled = percent / 5;
        fprintf(stderr, "\r[%-20.*s] %3d%% %-28s", filled, "####################", percent,
                what);
        fflush(stderr);
    }
    void done(void)
    {
        if(_on)
            fprintf(stderr, "\n");
        _on = false;
    }

  private:
    bool _on;
};

/// The presets' folder: CORVANE_DATA_DIR from the environment; else, for an
/// installed program, the data folder relative to the program's own
/// (CORVANE_DATA_RELDIR, e.g. ../share/corvane); else the folder the build
/// compiled in.
std::string dataDir(void)
{
    const char *dir = getenv("CORVANE_DATA_DIR");
    if(dir != NULL)
        return dir;
#ifdef CORVANE_DATA_RELDIR
    char          self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof(self) - 1);
    if(n > 0)
    {
        self[n] = 0;
        const std::string exe  = self;
        const std::string near = exe.substr(0, exe.rfind('/') + 1) + CORVANE_DATA_RELDIR;
        struct stat       info;
        if(stat(near.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
            return near;
    }
#endif
    return CORVANE_DATA_DIR;
}

/// The built-in phantom, 8 bit, edge n.
ImagePtr makePhantom(unsigned n)
{
    std::vector<uint8_t> voxels = volshapes::makeVolume(volshapes::Phantom, n, n, n, 8);
    ImagePtr             image  = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_L_PF, Int32(n), Int32(n), Int32(n), 1, 1, 0.0, voxels.data(),
               Image::OSG_UINT8_IMAGEDATA);
    endEditCP(image);
    return image;
}

/// A preset name becomes the file of data/ for the voxels' bit depth.
std::string transferFile(const std::string &name, bool sixteenBit)
{
    if(name == "phantom" || name.empty())
        return dataDir() + (sixteenBit ? "/phantom_bone_skin_u16.tf" : "/phantom_bone_skin_u8.tf");
    if(name == "ramp")
        return dataDir() + "/ramp.tf";
    return name;
}

void addChild(const NodePtr &parent, const NodePtr &child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

/// The camera's beacon on a sphere around the origin.
void placeCamera(const TransformPtr &beacon, const VolumeRenderOptions &o, Real32 azimuth,
                 Real32 radius)
{
    const Real32 az = osgdegree2rad(azimuth), el = osgdegree2rad(o.elevation);
    Pnt3f  from(radius * osgcos(el) * osgsin(az), radius * osgsin(el),
                radius * osgcos(el) * osgcos(az));
    Matrix m;
    MatrixLookAt(m, from, Pnt3f(0.f, 0.f, 0.f), Vec3f(0.f, 1.f, 0.f));
    beginEditCP(beacon, Transform::MatrixFieldMask);
    beacon->setMatrix(m);
    endEditCP(beacon, Transform::MatrixFieldMask);
}

std::string frameFile(const std::string &output, unsigned frame, unsigned frames)
{
    if(frames <= 1)
        return output;
    std::string stem = output, suffix;
    size_t      dot  = output.rfind('.');
    if(dot != std::string::npos && output.find('/', dot) == std::string::npos)
    {
        stem   = output.substr(0, dot);
        suffix = output.substr(dot);
    }
    char number[16];
    snprintf(number, sizeof(number), "_%03u", frame);
    return stem + number + suffix;
}

} // namespace

std::string dataDirectory(void)
{
    return dataDir();
}

void applyStyle(Holder &h, const VolumeNodePtr &volume, const std::string &style)
{
    BasicVolumeShadingStylePtr basic = h.keep(BasicVolumeShadingStyle::create());
    beginEditCP(basic);
    basic->setShadingFuncType(style == "mip" ? 1 : style == "xray" ? 2 : 0);
    basic->setLighting(style == "lit" || style == "boundary");
    endEditCP(basic);
    beginEditCP(volume, VolumeNode::ShadingStyleFieldMask | VolumeNode::ComposableStyleFieldMask);
    volume->setShadingStyle(basic);
    volume->getComposableStyle().clear();
    if(style == "boundary")
    {
        // opacity follows the gradient: boundaries stand out, flat regions fade
        ComposableVolumeShadingStylePtr edges = h.keep(ComposableVolumeShadingStyle::create());
        beginEditCP(edges);
        edges->setShadingFuncType(3);
        edges->setRetainedOpacity(0.15f);
        edges->setBoundaryOpacity(12.f);
        edges->setOpacityFactor(1.f);
        endEditCP(edges);
        volume->getComposableStyle().push_back(edges);
    }
    endEditCP(volume, VolumeNode::ShadingStyleFieldMask | VolumeNode::ComposableStyleFieldMask);
}

const std::vector<std::string> &volumeStyles(void)
{
    static const std::vector<std::string> styles = {"dvr", "lit", "mip", "xray", "boundary"};
    return styles;
}

bool buildVolumeScene(Holder &h, const VolumeRenderOptions &o, VolumeScene &scene,
                      std::string &error, const ProgressStep &step)
{
    auto progress = [&](int percent, const char *what) {
        if(step)
            step(percent, what);
    };

    // a mesh file, shown where the sphere would be (or alone)
    NodePtr meshFile = NullFC;
    if(o.mesh && !o.meshFile.empty())
    {
        progress(5, "reading the mesh");
        meshFile = SceneFileHandler::the().read(o.meshFile.c_str());
        if(meshFile == NullFC)
        {
            error = "can't read the mesh '" + o.meshFile + "'";
            return false;
        }
        h.keep(meshFile);
    }

    // the scene: a sun over the volume and the mesh
    NodePtr             lightBeacon = makeNodeFor(Transform::create());
    DirectionalLightPtr sun         = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(0.4f, 0.7f, 0.6f));
    sun->setAmbient(Color4f(0.2f, 0.2f, 0.2f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);
    scene.root   = h.keep(makeNodeFor(sun));
    scene.volume = NullFC;
    scene.image  = NullFC;
    addChild(scene.root, lightBeacon);

    if(!o.volume)
    {
        if(meshFile != NullFC)
            addChild(scene.root, meshFile);
        scene.root->updateVolume();
        Pnt3f lo, hi;
        scene.root->getVolume().getBounds(lo, hi);
        scene.extent = hi - lo;
        return true;
    }

    // the voxels
    progress(10, "reading the volume");
    ImagePtr image;
    if(o.file.empty())
    {
        image = h.keep(makePhantom(o.phantomSize));
    }
    else
    {
        image = h.keep(Image::create());
        if(!image->read(o.file.c_str()))
        {
            error = "can't read the volume '" + o.file + "'";
            return false;
        }
    }
    if(image->getDepth() <= 1)
    {
        error = "'" + o.file + "' is not a 3-D volume";
        return false;
    }
    const bool sixteenBit = image->getDataType() == GL_UNSIGNED_SHORT;
    Vec3f      thickness(1.f, 1.f, 1.f);
    if(const std::string *text = image->findAttachmentField("SliceThickness"))
    {
        std::istringstream in(*text);
        Vec3f              t;
        if(in >> t[0] >> t[1] >> t[2] && t[0] > 0.f && t[1] > 0.f && t[2] > 0.f)
            thickness = t;
    }

    // the transfer function, as a table texture for the voxels' bit depth
    progress(20, "transfer function");
    SimpleTransferfunction transfer;
    transfer.setMode(sixteenBit ? 1 : 0);
    const std::string tfFile = transferFile(o.transfer, sixteenBit);
    {
        std::ifstream probe(tfFile.c_str());
        if(!probe.good() || !transfer.load(tfFile))
        {
            error = "can't read the transfer function '" + tfFile + "'";
            return false;
        }
    }
    TextureChunkPtr table = h.keep(transfer.getTFTextureChunk());

    progress(30, "preparing the volume");
    const Real32 longest = osgMax(osgMax(image->getWidth() * thickness[0],
                                         image->getHeight() * thickness[1]),
                                  image->getDepth() * thickness[2]);
    const Vec3f  extent(2.f * image->getWidth() * thickness[0] / longest,
                        2.f * image->getHeight() * thickness[1] / longest,
                        2.f * image->getDepth() * thickness[2] / longest);

    TextureChunkPtr voxels = h.keep(TextureChunk::create());
    VolumeNodePtr   volume = h.keep(VolumeNode::create());
    beginEditCP(voxels);
    voxels->setImage(image);
    endEditCP(voxels);
    beginEditCP(volume);
    volume->setSliceThickness(thickness);
    volume->setDimensions(extent);
    volume->setTransferFunc(table);
    volume->setStepSize(o.stepSize);
    volume->setRayGenType(o.rayGen);
    volume->setTraversalType(o.traversal);
    volume->setNormalGenType(o.normals);
    volume->setTransferFuncType(o.preintegrated ? 2 : 1);
    volume->setVoxels(voxels);
    endEditCP(volume);
    applyStyle(h, volume, o.style);
    addChild(scene.root, makeNodeFor(volume));
    scene.volume = volume;
    scene.image  = image;
    scene.extent = extent;
    if(meshFile != NullFC)
    {
        // scaled so that its longest side spans 0.8 of the volume's shortest
        meshFile->updateVolume();
        Pnt3f lo, hi;
        meshFile->getVolume().getBounds(lo, hi);
        const Vec3f  size   = hi - lo;
        const Real32 side   = osgMax(osgMax(size[0], size[1]), osgMax(size[2], 1e-6f));
        const Real32 scale  = 0.8f * osgMin(osgMin(extent[0], extent[1]), extent[2]) / side;
        const Vec3f  centre = (lo.subZero() + hi.subZero()) * 0.5f;
        NodePtr      moved  = makeNodeFor(Transform::create());
        Matrix       m;
        m.setTransform(-centre * scale, Quaternion(), Vec3f(scale, scale, scale));
        beginEditCP(moved->getCore());
        TransformPtr::dcast(moved->getCore())->setMatrix(m);
        endEditCP(moved->getCore());
        addChild(moved, meshFile);
        addChild(scene.root, moved);
    }
    else if(o.mesh)
    {
        NodePtr           ball = makeSphere(4, 0.42f);
        SimpleMaterialPtr mat  = SimpleMaterial::create();
        beginEditCP(mat);
        mat->setDiffuse(Color3f(0.9f, 0.45f, 0.15f));
        mat->setAmbient(Color3f(0.3f, 0.15f, 0.05f));
        mat->setSpecular(Color3f(0.5f, 0.5f, 0.5f));
        mat->setShininess(40.f);
        endEditCP(mat);
        setMaterial(ball, mat);
        addChild(scene.root, placed(h, ball, Vec3f(0.3f * extent[0], 0.05f, 0.3f * extent[2]),
                              Quaternion()));
    }

    return true;
}

bool parseSharedOption(int argc, char **argv, int &i, VolumeRenderOptions &o,
                       const char *sizeWhat, std::string &error)
{
    const std::string a    = argv[i];
    auto              need = [&](int count) { return i + count < argc; };
    if(a == "--size" && need(2))
    {
        if(!parseUInt(argv[i + 1], 1, 8192, o.width) || !parseUInt(argv[i + 2], 1, 8192, o.height))
        {
            error = std::string("bad ") + sizeWhat + " size '" + argv[i + 1] + " " + argv[i + 2] +
                    "' (1 to 8192 each)";
            return false;
        }
        i += 2;
    }
    else if(a == "--transfer" && need(1))
        o.transfer = argv[++i];
    else if(a == "--style" && need(1))
    {
        o.style = argv[++i];
        const std::vector<std::string> &styles = volumeStyles();
        if(std::find(styles.begin(), styles.end(), o.style) == styles.end())
        {
            error = "unknown style '" + o.style + "'";
            return false;
        }
    }
    else if(a == "--step" && need(1))
    {
        if(!parseFloat(argv[++i], 0.0005f, 0.5f, o.stepSize))
        {
            error = "bad step '" + std::string(argv[i]) + "' (0.0005 to 0.5)";
            return false;
        }
    }
    else if(a == "--mesh" && need(1))
        o.meshFile = argv[++i];
    else if(!a.empty() && a[0] == '-')
    {
        error = "unknown option '" + a + "' (or a value missing)";
        return false;
    }
    else if(o.file.empty())
        o.file = a;
    else
    {
        error = "more than one volume file: '" + o.file + "' and '" + a + "'";
        return false;
    }
    return true;
}

bool renderVolume(const VolumeRenderOptions &o, std::string &error, std::vector<double> *frameTimes)
{
    Holder      h;
    Progress    progress(o.progress);
    VolumeScene scene;
    if(!buildVolumeScene(h, o, scene, error,
                         [&](int percent, const char *what) { progress.step(percent, what); }))
        return false;
    const ImagePtr image = scene.image;
    const NodePtr  root  = scene.root;

    EGLWindowPtr win = openWindow(h, o.width, o.height);
    if(win == NullFC)
    {
        error = "no OpenGL context";
        return false;
    }
    GLint max3D = 0;
    glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &max3D);
    if(image->getWidth() > max3D || image->getHeight() > max3D || image->getDepth() > max3D)
    {
        error = "the volume is larger than the 3-D texture limit of " + std::to_string(max3D);
        return false;
    }

    NodePtr      cameraBeacon = makeNodeFor(Transform::create());
    TransformPtr beacon       = TransformPtr::dcast(cameraBeacon->getCore());
    addChild(root, cameraBeacon);
    PerspectiveCameraPtr camera = h.keep(PerspectiveCamera::create());
    beginEditCP(camera);
    camera->setBeacon(cameraBeacon);
    camera->setFov(osgdegree2rad(40.f));
    camera->setNear(0.1f);
    camera->setFar(50.f);
    endEditCP(camera);
    const Real32 radius = o.distance * 2.f;
    placeCamera(beacon, o, o.azimuth, radius);

    BackgroundPtr background = makeSolid(h, Color3f(0.08f, 0.09f, 0.12f));
    VolumeViewportPtr volumePort = h.keep(VolumeViewport::create());
    beginEditCP(volumePort);
    volumePort->setCamera(camera);
    volumePort->setRoot(root);
    volumePort->setBackground(background);
    volumePort->getVolumeNodes().push_back(scene.volume);
    endEditCP(volumePort);
    win->addPort(volumePort);
    addPort(h, win, camera, root, background, 0.f, 1.f);

    // a last port grabs the frame into the file
    ScreenDumpForegroundPtr dump = addDumpPort(h, win);

    std::unique_ptr<RenderAction> action(RenderAction::create());
    // the first frame builds the handler's GPU side and renders no volume
    progress.step(60, "building shaders and grids");
    win->render(action.get());
    progress.step(100, "ready");
    progress.done();

    bool ok = true;
    for(unsigned frame = 0; frame < o.frames && ok; ++frame)
    {
        placeCamera(beacon, o, o.azimuth + 360.f * Real32(frame) / Real32(o.frames), radius);
        const auto start = std::chrono::steady_clock::now();
        win->render(action.get());
        glFinish();
        const auto stop = std::chrono::steady_clock::now();
        if(frameTimes != NULL)
            frameTimes->push_back(std::chrono::duration<double, std::milli>(stop - start).count());

        // the same frame again, now written by the dump
        const std::string file = frameFile(o.output, frame, o.frames);
        if(!renderFrameToFile(win, action.get(), dump, file.c_str()))
        {
            error = "can't write '" + file + "'";
            ok    = false;
        }
    }
    while(!win->getPort().empty())
        win->subPort(UInt32(0));
    return ok;
}

} // namespace corvane
