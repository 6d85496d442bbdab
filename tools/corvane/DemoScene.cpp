#include "DemoScene.h"

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

#include <memory>

OSG_USING_NAMESPACE

namespace corvane
{

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

/// Keeps one counted reference to everything the scene is made of.
class Holder
{
  public:
    ~Holder(void)
    {
        for(size_t i = _held.size(); i-- > 0;)
            subRefCP(_held[i]);
    }
    template <class PtrT>
    PtrT keep(const PtrT &p)
    {
        addRefCP(p);
        _held.push_back(p);
        return p;
    }

  private:
    std::vector<FieldContainerPtr> _held;
};

ImagePtr makeChecker(UInt32 edge, UInt32 cells, Color3f a, Color3f b)
{
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, Int32(edge), Int32(edge));
    UInt8 *p = image->editData();
    for(UInt32 y = 0; y < edge; ++y)
        for(UInt32 x = 0; x < edge; ++x, p += 3)
        {
            const Color3f &c = (((x * cells / edge) + (y * cells / edge)) & 1) ? a : b;
            p[0] = UInt8(c.red() * 255.f);
            p[1] = UInt8(c.green() * 255.f);
            p[2] = UInt8(c.blue() * 255.f);
        }
    endEditCP(image);
    return image;
}

NodePtr placed(Holder &h, NodePtr child, const Vec3f &at, const Quaternion &rotation)
{
    TransformPtr t = Transform::create();
    Matrix m;
    m.setTransform(at, rotation);
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    NodePtr n = Node::create();
    beginEditCP(n);
    n->setCore(t);
    n->addChild(child);
    endEditCP(n);
    return n;
}

void setMaterial(NodePtr node, MaterialPtr material)
{
    GeometryPtr geo = GeometryPtr::dcast(node->getCore());
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(material);
    endEditCP(geo, Geometry::MaterialFieldMask);
}

SimpleMaterialPtr texturedMaterial(ImagePtr image, Color3f diffuse)
{
    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(image);
    tex->setEnvMode(GL_MODULATE);
    tex->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(tex);

    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setAmbient(Color3f(0.2f, 0.2f, 0.2f));
    mat->setDiffuse(diffuse);
    mat->setSpecular(Color3f(0.4f, 0.4f, 0.4f));
    mat->setShininess(30.f);
    mat->addChunk(tex);
    endEditCP(mat);
    return mat;
}

} // namespace

bool renderShadedScene(const char *fileName, UInt32 width, UInt32 height)
{
    Holder h;

    EGLWindowPtr win = h.keep(EGLWindow::create());
    beginEditCP(win);
    win->setSize(UInt16(width), UInt16(height));
    endEditCP(win);
    win->init();
    if(!win->isInitialized())
    {
        FWARNING(("renderShadedScene: no OpenGL context\n"));
        return false;
    }

    // camera on a beacon, looking at the scene from above and in front
    NodePtr camBeacon = h.keep(Node::create());
    TransformPtr camXform = Transform::create();
    Matrix camMatrix;
    MatrixLookAt(camMatrix, Pnt3f(0.f, 3.2f, 9.f), Pnt3f(0.f, 0.6f, 0.f), Vec3f(0.f, 1.f, 0.f));
    beginEditCP(camXform);
    camXform->setMatrix(camMatrix);
    endEditCP(camXform);
    beginEditCP(camBeacon);
    camBeacon->setCore(camXform);
    endEditCP(camBeacon);

    PerspectiveCameraPtr camera = h.keep(PerspectiveCamera::create());
    beginEditCP(camera);
    camera->setBeacon(camBeacon);
    camera->setFov(osgdegree2rad(45.f));
    camera->setNear(0.5f);
    camera->setFar(50.f);
    endEditCP(camera);

    // a sun from the upper left, fixed in the world
    NodePtr lightBeacon = Node::create();
    beginEditCP(lightBeacon);
    lightBeacon->setCore(Group::create());
    endEditCP(lightBeacon);
    DirectionalLightPtr sun = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.5f, 0.8f, 0.6f));
    sun->setAmbient(Color4f(0.25f, 0.25f, 0.28f, 1.f));
    sun->setDiffuse(Color4f(1.f, 0.97f, 0.9f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);

    // the objects
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
    root->addChild(camBeacon);
    root->addChild(placed(h, floor, Vec3f(0.f, 0.f, 0.f), flat));
    root->addChild(placed(h, sphere, Vec3f(-1.7f, 1.1f, 0.2f), Quaternion()));
    root->addChild(placed(h, torus, Vec3f(1.8f, 1.2f, -0.3f), tilt));
    endEditCP(root);

    SolidBackgroundPtr background = h.keep(SolidBackground::create());
    beginEditCP(background);
    background->setColor(Color3f(0.12f, 0.13f, 0.16f));
    endEditCP(background);

    ViewportPtr port = h.keep(Viewport::create());
    beginEditCP(port);
    port->setSize(0.f, 0.f, 1.f, 1.f);
    port->setCamera(camera);
    port->setRoot(root);
    port->setBackground(background);
    endEditCP(port);
    win->addPort(port);

    std::unique_ptr<RenderAction> action(RenderAction::create());
    win->render(action.get());

    ImagePtr shot = h.keep(Image::create());
    beginEditCP(shot);
    shot->set(Image::OSG_RGBA_PF, Int32(width), Int32(height));
    endEditCP(shot);
    bool ok = win->readPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, shot->editData()) &&
              shot->write(fileName);
    win->subPort(port);
    if(!ok)
        FWARNING(("renderShadedScene: can't write %s\n", fileName));
    return ok;
}

} // namespace corvane
