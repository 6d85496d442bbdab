#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGImprovedColorDisplayFilter.h>
#include <OpenSG/OSGOculusRiftFilter.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGSkydomeBackground.h>

#include <algorithm>
#include <fstream>

#include <memory>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

// Per-pixel lighting from the first GL light, with a rim that brightens the
// silhouette; the light and material come from the fixed-function state.
const char *RimVertexProgram = R"(
varying vec3 normal;
varying vec3 eyePos;
void main()
{
    normal = gl_NormalMatrix * gl_Normal;
    eyePos = vec3(gl_ModelViewMatrix * gl_Vertex);
    gl_Position = ftransform();
}
)";

const char *RimFragmentProgram = R"(
uniform vec3 baseColor;
uniform vec3 rimColor;
uniform float rimPower;
varying vec3 normal;
varying vec3 eyePos;
void main()
{
    vec3 n = normalize(normal);
    vec3 l = normalize(gl_LightSource[0].position.xyz);
    vec3 v = normalize(-eyePos);
    vec3 h = normalize(l + v);
    float diffuse = max(dot(n, l), 0.0);
    float specular = pow(max(dot(n, h), 0.0), 48.0);
    float rim = pow(1.0 - max(dot(n, v), 0.0), rimPower);
    vec3 colour = baseColor * (0.15 + 0.85 * diffuse) + vec3(specular) + rimColor * rim;
    gl_FragColor = vec4(colour, 1.0);
}
)";

/// A latitude-longitude sky: a deep blue zenith fading to a pale horizon,
/// a warm sun low in the west, and a dim ground below the horizon. Rows run
/// from the south pole (row 0) to the north pole.
ImagePtr makeSky(UInt32 width, UInt32 height)
{
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, Int32(width), Int32(height));
    UInt8       *p       = image->editData();
    const Vec3f  sun     = Vec3f(-0.8f, 0.25f, -0.55f) * (1.f / 1.0f);
    Vec3f        sunDir  = sun;
    sunDir.normalize();
    for(UInt32 y = 0; y < height; ++y)
    {
        Real32 lat = (Real32(y) + 0.5f) / Real32(height) * Pi - Pi / 2.f;
        for(UInt32 x = 0; x < width; ++x, p += 3)
        {
            Real32 lon = (Real32(x) + 0.5f) / Real32(width) * 2.f * Pi;
            Vec3f  dir(osgcos(lat) * osgcos(lon), osgsin(lat), osgcos(lat) * osgsin(lon));
            Color3f c;
            if(lat >= 0.f)
            {
                Real32 t = osgpow(lat / (Pi / 2.f), 0.45f);
                c        = Color3f(0.78f, 0.86f, 0.95f) * (1.f - t) +
                    Color3f(0.16f, 0.34f, 0.72f) * t;
            }
            else
            {
                Real32 t = osgMin(-lat / 0.3f, 1.f);
                c        = Color3f(0.45f, 0.43f, 0.38f) * (1.f - t) +
                    Color3f(0.22f, 0.2f, 0.18f) * t;
            }
            Real32 glow = osgpow(osgMax(dir.dot(sunDir), 0.f), 64.f);
            Real32 disc = dir.dot(sunDir) > 0.9995f ? 1.f : 0.f;
            c += Color3f(1.f, 0.75f, 0.45f) * (0.6f * glow) + Color3f(1.f, 1.f, 0.9f) * disc;
            p[0] = UInt8(osgMin(c.red(), 1.f) * 255.f);
            p[1] = UInt8(osgMin(c.green(), 1.f) * 255.f);
            p[2] = UInt8(osgMin(c.blue(), 1.f) * 255.f);
        }
    }
    endEditCP(image);
    return image;
}

BackgroundPtr makeSkydome(Holder &h)
{
    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(makeSky(512, 256));
    tex->setMinFilter(GL_LINEAR);
    tex->setMagFilter(GL_LINEAR);
    tex->setWrapS(GL_REPEAT);
    tex->setWrapT(GL_CLAMP_TO_EDGE);
    tex->setEnvMode(GL_REPLACE);
    endEditCP(tex);

    SkydomeBackgroundPtr sky = h.keep(SkydomeBackground::create());
    beginEditCP(sky);
    sky->setSphereRes(48);
    sky->setLatlongTexture(tex);
    endEditCP(sky);
    return sky;
}

/// The objects of every scene under a directional light: a checkered floor,
/// a textured sphere and a torus with a GLSL rim shader.
NodePtr makeObjects(Holder &h)
{
    // a sun from the upper left, fixed in the world
    NodePtr lightBeacon = makeNodeFor(Group::create());
    DirectionalLightPtr sun = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.5f, 0.8f, 0.6f));
    sun->setAmbient(Color4f(0.25f, 0.25f, 0.28f, 1.f));
    sun->setDiffuse(Color4f(1.f, 0.97f, 0.9f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);

    NodePtr floor = makePlane(12.f, 12.f, 8, 8);
    setMaterial(floor, texturedMaterial(makeChecker(256, 16, Color3f(0.85f, 0.85f, 0.8f),
                                                    Color3f(0.25f, 0.3f, 0.35f)),
                                        Color3f(1.f, 1.f, 1.f)));
    Quaternion flat;
    flat.setValueAsAxisDeg(1.f, 0.f, 0.f, -90.f);

    NodePtr sphere = makeSphere(4, 1.1f);
    setMaterial(sphere, texturedMaterial(makeChecker(128, 8, Color3f(0.95f, 0.55f, 0.1f),
                                                     Color3f(0.95f, 0.9f, 0.8f)),
                                         Color3f(1.f, 1.f, 1.f)));

    SHLChunkPtr shader = SHLChunk::create();
    beginEditCP(shader);
    shader->setVertexProgram(RimVertexProgram);
    shader->setFragmentProgram(RimFragmentProgram);
    shader->setUniformParameter("baseColor", Vec3f(0.2f, 0.45f, 0.9f));
    shader->setUniformParameter("rimColor", Vec3f(0.6f, 0.9f, 1.f));
    shader->setUniformParameter("rimPower", 3.f);
    endEditCP(shader);
    ChunkMaterialPtr shaded = ChunkMaterial::create();
    beginEditCP(shaded);
    shaded->addChunk(shader);
    endEditCP(shaded);
    NodePtr torus = makeTorus(0.35f, 1.f, 24, 48);
    setMaterial(torus, shaded);
    Quaternion tilt;
    tilt.setValueAsAxisDeg(1.f, 0.3f, 0.f, 60.f);

    NodePtr root = h.keep(Node::create());
    beginEditCP(root);
    root->setCore(sun);
    root->addChild(lightBeacon);
    root->addChild(placed(h, floor, Vec3f(0.f, 0.f, 0.f), flat));
    root->addChild(placed(h, sphere, Vec3f(-1.7f, 1.1f, 0.2f), Quaternion()));
    root->addChild(placed(h, torus, Vec3f(1.8f, 1.2f, -0.3f), tilt));
    endEditCP(root);
    return root;
}

void addFilter(Holder &h, const ViewportPtr &port, const DisplayFilterPtr &filter)
{
    DisplayFilterForegroundPtr fg = h.keep(DisplayFilterForeground::create());
    h.keep(filter);
    beginEditCP(fg);
    fg->getFilter().push_back(filter);
    endEditCP(fg);
    beginEditCP(port, Viewport::ForegroundsFieldMask);
    port->getForegrounds().push_back(fg);
    endEditCP(port, Viewport::ForegroundsFieldMask);
}

/// A calibration for a display whose corners are dim and whose panel is a
/// little blue: the table brightens towards the edges, warms the colour and
/// re-applies the gamma the shader takes off.
DisplayFilterPtr makeCalibration(Holder &h)
{
    const UInt32 W = 8, H = 6, D = 16;
    ImprovedColorDisplayFilterPtr filter = h.keep(ImprovedColorDisplayFilter::create());
    beginEditCP(filter);
    filter->setGamma(2.2f);
    filter->setWidth(W);
    filter->setHeight(H);
    filter->setDepth(D);
    for(UInt32 z = 0; z < D; ++z)
        for(UInt32 y = 0; y < H; ++y)
            for(UInt32 x = 0; x < W; ++x)
            {
                Real32 u = (Real32(x) + 0.5f) / W - 0.5f, v = (Real32(y) + 0.5f) / H - 0.5f;
                Real32 vignette = 0.55f + 0.45f * osgMin(1.f, 2.4f * (u * u + v * v));
                Real32 value    = osgpow(Real32(z) / (D - 1), 1.f / 2.2f) * vignette;
                filter->getTable().push_back(Vec3f(osgMin(value * 1.08f, 1.f), value,
                                                   value * 0.85f));
            }
    endEditCP(filter);
    return filter;
}

DisplayFilterPtr makeLens(Holder &h, bool leftEye)
{
    OculusRiftFilterPtr filter = h.keep(OculusRiftFilter::create());
    beginEditCP(filter);
    filter->setLeftEye(leftEye);
    filter->setChromaAbCorrection(Vec4f(0.996f, -0.004f, 1.014f, 0.f));
    endEditCP(filter);
    return filter;
}

/// The objects under a sun, seen as the named scene asks.
bool renderBasicScene(const std::string &name, const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr root = makeObjects(h);

    if(name == "hmd")
    {
        // one port per eye, each warped for its lens; the lens magnifies
        // the centre, so each eye sees a wide field
        BackgroundPtr sky = makeSkydome(h);
        for(int eye = 0; eye < 2; ++eye)
        {
            Real32      dx     = eye == 0 ? -0.3f : 0.3f;
            CameraPtr   camera = makeCamera(h, root, Pnt3f(dx, 2.2f, 7.f),
                                            Pnt3f(dx, 1.f, 0.f), 100.f);
            ViewportPtr port   = addPort(h, win, camera, root, sky, eye * 0.5f,
                                         eye * 0.5f + 0.5f);
            addFilter(h, port, makeLens(h, eye == 0));
        }
    }
    else
    {
        bool        sky    = name == "sky";
        CameraPtr   camera = sky ? makeCamera(h, root, Pnt3f(0.f, 1.4f, 9.f), Pnt3f(0.f, 2.f, 0.f))
                                 : makeCamera(h, root, Pnt3f(0.f, 3.2f, 9.f), Pnt3f(0.f, 0.6f, 0.f));
        ViewportPtr port   = addPort(h, win, camera, root,
                                     sky ? makeSkydome(h)
                                         : makeSolid(h, Color3f(0.12f, 0.13f, 0.16f)),
                                     0.f, 1.f);
        if(name == "calibrated")
            addFilter(h, port, makeCalibration(h));
    }

    return renderToFile(h, win, fileName);
}

bool renderShaded(const char *fileName, UInt32 width, UInt32 height)
{
    return renderBasicScene("shaded", fileName, width, height);
}

bool renderSky(const char *fileName, UInt32 width, UInt32 height)
{
    return renderBasicScene("sky", fileName, width, height);
}

bool renderCalibrated(const char *fileName, UInt32 width, UInt32 height)
{
    return renderBasicScene("calibrated", fileName, width, height);
}

bool renderHmd(const char *fileName, UInt32 width, UInt32 height)
{
    return renderBasicScene("hmd", fileName, width, height);
}

const DemoSceneRegistration shadedScene("shaded", "a lit, textured and GLSL-shaded scene",
                                        renderShaded);
const DemoSceneRegistration skyScene("sky", "the same objects under the sky-dome background",
                                     renderSky);
const DemoSceneRegistration calibratedScene(
    "calibrated", "the shaded scene through the colour-calibration display filter",
    renderCalibrated);
const DemoSceneRegistration hmdScene(
    "hmd", "a stereo pair warped for head-mounted-display lenses", renderHmd);

} // namespace
