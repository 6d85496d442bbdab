#include <OpenSG/DropletFlow.h>
#include <OpenSG/DropletPlacer.h>
#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

// --- projection of the object into texture space -------------------------------

// Each vertex lands at its texture coordinate, so the object's unwrap
// covers the map.
const char *NormalProjectionVertexProgram = R"(
varying vec2 texCoord;
varying vec3 Normal;
void main()
{
    gl_Position = vec4(gl_MultiTexCoord0.xy, 0.0, 1.0) * 2.0 - 1.0;
    texCoord = gl_MultiTexCoord0.xy;
    Normal = gl_Normal;
}
)";

const char *TangentProjectionVertexProgram = R"(
varying vec2 texCoord;
varying vec3 Tangent;
void main()
{
    gl_Position = vec4(gl_MultiTexCoord0.xy, 0.0, 1.0) * 2.0 - 1.0;
    texCoord = gl_MultiTexCoord0.xy;
    Tangent = gl_MultiTexCoord1.xyz;
}
)";

// Turns the input vector by perturbAngle around a random axis from the
// noise map (Rodrigues' rotation) and encodes it as a colour. INPUT stands
// for the varying of the vertex stage.
const char *PerturbationFragmentTemplate = R"(
uniform sampler2D noiseMap;
uniform float perturbAngle;
varying vec2 texCoord;
varying vec3 INPUT;
void main()
{
    vec3 v = normalize(texture2D(noiseMap, texCoord).xyz * 2.0 - 1.0);
    float c = cos(perturbAngle);
    float s = sin(perturbAngle);
    float k = 1.0 - c;
    mat3 rotation = mat3(v.x * v.x * k + c, v.x * v.y * k - v.z * s, v.x * v.z * k + v.y * s,
                         v.y * v.x * k + v.z * s, v.y * v.y * k + c, v.y * v.z * k - v.x * s,
                         v.z * v.x * k - v.y * s, v.z * v.y * k + v.x * s, v.z * v.z * k + c);
    gl_FragColor = vec4(normalize(rotation * INPUT) * 0.5 + 0.5, 1.0);
}
)";

std::string perturbationProgram(const std::string &input)
{
    std::string text = PerturbationFragmentTemplate;
    for(size_t at = text.find("INPUT"); at != std::string::npos; at = text.find("INPUT", at))
        text.replace(at, 5, input);
    return text;
}

// --- the time step ------------------------------------------------------------------

// The corners of the plane become the corners of the target, whatever the
// camera.
const char *FullScreenVertexProgram = R"(
varying vec2 texCoord;
void main()
{
    vec2 p = sign(gl_Vertex.xy);
    gl_Position = vec4(p, 0.0, 1.0);
    texCoord = p * 0.5 + 0.5;
}
)";

// The force, brought into the object's coordinates and onto the surface's
// tangent plane, accelerates the fluid; thin films accelerate more, and
// friction damps thin films more than thick ones.
const char *VelocityFragmentProgram = R"(
uniform vec3 force;
uniform float density;
uniform float timeStep;
uniform float frictionN;
uniform float frictionSigma;
uniform float viscosity;
uniform mat4 invViewMatrix;
uniform sampler2D surfaceMap;
uniform sampler2D normalMap;
uniform sampler2D tangentMap;
varying vec2 texCoord;

float attenuation(float x)
{
    return clamp(exp(-pow(1.0 - x, frictionN) / frictionSigma) * viscosity, 0.0, 1.0);
}

void main()
{
    vec4 surface = texture2D(surfaceMap, texCoord);
    surface.z = clamp(surface.z, 0.0, 1.0);
    vec3 normal = texture2D(normalMap, texCoord).xyz * 2.0 - 1.0;
    vec3 tangent = texture2D(tangentMap, texCoord).xyz * 2.0 - 1.0;
    vec3 biTangent = cross(normal, tangent);
    vec3 acceleration = (invViewMatrix * vec4(force, 0.0)).xyz / (density * max(0.01, surface.z));
    vec2 a = vec2(dot(tangent, acceleration), dot(biTangent, acceleration));
    vec2 velocity = (surface.xy + a * timeStep) * attenuation(surface.z);
    gl_FragColor = vec4(velocity.x, velocity.y, surface.z, 0.0);
}
)";

// Each texel gathers from itself and its eight neighbours the share of
// their volume that their own displacement (at most one texel) sends here.
// The velocity stays with the texel. Fluid leaves at the low borders.
const char *AdvectionFragmentProgram = R"(
uniform float timeStep;
uniform vec2 offset;
uniform sampler2D surfaceMap;
varying vec2 texCoord;

float p(float t)
{
    return max(0.0, t);
}

float n(float t)
{
    return abs(min(0.0, t));
}

float r(float t)
{
    return 1.0 - abs(t);
}

vec2 displacement(vec4 surface)
{
    vec2 d = surface.xy * timeStep;
    float len = length(d);
    if(len > 1.0)
        d = d / len;
    return d;
}

void main()
{
    vec4 surface;
    vec2 d;
    float c = 0.0;

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, offset.y));
    d = displacement(surface);
    c += p(d.x) * n(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(0.0, offset.y));
    d = displacement(surface);
    c += r(d.x) * n(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, offset.y));
    d = displacement(surface);
    c += n(d.x) * n(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, 0.0));
    d = displacement(surface);
    c += p(d.x) * r(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, 0.0));
    d = displacement(surface);
    c += n(d.x) * r(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, -offset.y));
    d = displacement(surface);
    c += p(d.x) * p(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(0.0, -offset.y));
    d = displacement(surface);
    c += r(d.x) * p(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, -offset.y));
    d = displacement(surface);
    c += n(d.x) * p(d.y) * surface.z;

    surface = texture2D(surfaceMap, texCoord);
    d = displacement(surface);
    c += r(d.x) * r(d.y) * surface.z;

    c *= step(offset.x, texCoord.x) * step(offset.y, texCoord.y);
    gl_FragColor = vec4(surface.x, surface.y, clamp(c, 0.0, 1.0), 0.0);
}
)";

// --- display of the wet object -------------------------------------------------------

// Light and view directions in the surface's tangent space, where the
// fluid's normal comes from the slope of the volume.
const char *DisplayVertexProgram = R"(
varying vec2 texCoord;
varying vec3 lightDir;
varying vec3 viewDir;
void main()
{
    gl_Position = ftransform();
    vec3 position = gl_Vertex.xyz;
    vec3 view = normalize((gl_ModelViewMatrixInverse * vec4(0.0, 0.0, 0.0, 1.0)).xyz - position);
    vec3 light = normalize((gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz, 1.0)).xyz - position);
    texCoord = gl_MultiTexCoord0.xy;
    vec3 normal = normalize(gl_Normal);
    vec3 tangent = normalize(gl_MultiTexCoord1.xyz);
    vec3 biTangent = normalize(cross(normal, tangent));
    viewDir = normalize(vec3(dot(tangent, view), dot(biTangent, view), dot(normal, view)));
    lightDir = normalize(vec3(dot(tangent, light), dot(biTangent, light), dot(normal, light)));
}
)";

// What both display programs read: the volume under the fragment and the
// normal of the film, from the slope of the volume towards the next texels.
const char *FluidSurfaceProgram = R"(
uniform sampler2D surfaceMap;
uniform vec4 fluidColor;
uniform vec2 offset;
varying vec2 texCoord;
varying vec3 lightDir;
varying vec3 viewDir;

float fluidSurface(out vec3 nNormal)
{
    float val = texture2D(surfaceMap, texCoord).z;
    float valU = texture2D(surfaceMap, texCoord + vec2(offset.x, 0.0)).z;
    float valV = texture2D(surfaceMap, texCoord + vec2(0.0, offset.y)).z;
    nNormal = normalize(vec3(val - valU, val - valV, 0.5));
    return val;
}
)";

// The fluid alone, to be blended over the object: its colour, a little
// Fresnel, a highlight, and an opacity that grows with the volume.
const char *OverlayMainProgram = R"(
void main()
{
    vec3 nNormal;
    float val = fluidSurface(nNormal);
    vec3 nViewDir = normalize(viewDir);
    vec3 nLightDir = normalize(lightDir);
    float NDotL = max(0.2, 0.1 + dot(nNormal, nLightDir));
    float NDotH = max(0.2, dot(normalize(nLightDir + nViewDir), nNormal));
    float volume = clamp(val, 0.0, 1.0);
    float lrp = 0.1 * pow(max(0.0, 1.0 - dot(nViewDir, nNormal)), 5.0);
    float wetnessScale = smoothstep(0.0, 0.05, volume);
    float specularScale = wetnessScale * pow(NDotH, 30.0);
    vec3 colour = min(fluidColor.rgb * NDotL + fluidColor.rgb * lrp + specularScale, 1.0);
    gl_FragColor = vec4(colour, (pow(volume, 0.5) + specularScale) * fluidColor.a);
}
)";

// The object's own texture (unit 0) under the fluid, lit by the first light
// with the material's colours.
const char *DiffuseMainProgram = R"(
uniform sampler2D diffuseMap;
void main()
{
    vec3 nNormal;
    float val = fluidSurface(nNormal);
    vec3 nViewDir = normalize(viewDir);
    vec3 nLightDir = normalize(lightDir);
    float NDotL = max(0.2, dot(nNormal, nLightDir));
    float NDotH = max(dot(normalize(nLightDir + nViewDir), nNormal), 0.2);
    vec4 TotalAmbient = gl_LightSource[0].ambient;
    vec4 TotalDiffuse = gl_LightSource[0].diffuse * NDotL;
    vec4 TotalSpecular = gl_LightSource[0].specular * pow(NDotH, gl_FrontMaterial.shininess);
    float volume = clamp(val, 0.0, 1.0);
    vec4 colour = mix(texture2D(diffuseMap, texCoord), fluidColor, pow(volume, 0.5) * fluidColor.a);
    gl_FragColor = min(gl_FrontMaterial.ambient * TotalAmbient +
                       gl_FrontMaterial.diffuse * max(TotalDiffuse, 0.0) * colour +
                       (smoothstep(0.0, 0.05, volume) + gl_FrontMaterial.specular) * TotalSpecular +
                       gl_FrontMaterial.emission, 1.0);
}
)";

/// Sets one uniform and ends the edit that makes it reach GL.
template <class ValueT>
void setUniform(const SHLChunkPtr &shader, const char *name, const ValueT &value)
{
    if(shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter(name, value);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

void release(FieldContainerPtr fc)
{
    if(fc != NullFC)
        subRefCP(fc);
}

/// The noise map's edge is bounded so that a bad field value can't ask
/// for an unbounded allocation; real noise maps are a few dozen texels.
const int MaxNoiseMapSize = 4096;

} // namespace

DropletFlow::DropletFlow(NodePtr node, ChunkMaterialPtr material, int width, int height,
                         int matMode, TextureChunkPtr texture)
    : _node(node),
      _material(material),
      _flowShader(NullFC),
      _displayShader(NullFC),
      _normalShader(NullFC),
      _tangentShader(NullFC),
      _velocityShader(NullFC),
      _normalMap(NullFC),
      _tangentMap(NullFC),
      _noiseMap(NullFC),
      _width(width),
      _height(height),
      _placer(NULL),
      _timer(NULL),
      _ownsFirstSurfaceMap(texture == NullFC)
{
    _fboScene[0] = _fboScene[1] = NullFC;
    _fboViewport[0] = _fboViewport[1] = NullFC;
    _surfaceMap[0] = _surfaceMap[1] = NullFC;

    if(_node != NullFC)
        addRefCP(_node);
    if(_material != NullFC)
        addRefCP(_material);

    _timer = new Timer(this);

    DropletUtils *utils = DropletUtils::the();

    _normalShader   = utils->createShader(NormalProjectionVertexProgram,
                                          perturbationProgram("Normal"));
    _tangentShader  = utils->createShader(TangentProjectionVertexProgram,
                                          perturbationProgram("Tangent"));
    _flowShader     = utils->createShader(FullScreenVertexProgram, AdvectionFragmentProgram);
    _velocityShader = utils->createShader(FullScreenVertexProgram, VelocityFragmentProgram);
    addRefCP(_normalShader);
    addRefCP(_tangentShader);
    addRefCP(_flowShader);
    addRefCP(_velocityShader);

    _normalMap  = createTexture(GL_RGBA8);
    _tangentMap = createTexture(GL_RGBA8);
    addRefCP(_normalMap);
    addRefCP(_tangentMap);

    if(texture != NullFC)
        _surfaceMap[0] = texture;
    else
    {
        _surfaceMap[0] = createTexture(SurfaceMapFormat);
        addRefCP(_surfaceMap[0]);
    }
    _surfaceMap[1] = createTexture(SurfaceMapFormat);
    addRefCP(_surfaceMap[1]);

    // No roles are swapped between steps: the velocity pass writes the
    // first map from the second, the advection pass the second from the
    // first. The state at rest is the second map; the display shows the
    // first.
    SHLChunkPtr shaders[2] = {_velocityShader, _flowShader};

    for(int i = 0; i < 2; ++i)
    {
        std::vector<StateChunkPtr> chunks;
        chunks.push_back(shaders[i]);
        chunks.push_back(_surfaceMap[1 - i]);
        chunks.push_back(_normalMap);
        chunks.push_back(_tangentMap);

        _fboScene[i] = utils->createFBOScene(&chunks);
        addRefCP(_fboScene[i]);

        _fboViewport[i] = utils->createFBOViewport(_fboScene[i], _surfaceMap[i], NullFC);
        if(_fboViewport[i] != NullFC)
            addRefCP(_fboViewport[i]);
    }

    initDropletDisplayMaterial(matMode);

    _placer = new DropletPlacer(_surfaceMap[1]);

    rebuildNoiseMap(32, 32);
    updateShaderTextureParams();

    // The viewport replaces these at once.
    setDisplayParams(Vec4f(0.f, 0.3f, 1.f, 1.f));
    setForce(Vec3f(0.f, -1.f, 0.f));
    setFlowParams(0.01f, 0.1f, 1.f, 1.f, 3.f, 0.1f);
    updateSceneTransform();
}

DropletFlow::~DropletFlow(void)
{
    // The chunks added to the material stay there.
    delete _placer;
    delete _timer;

    for(int i = 0; i < 2; ++i)
    {
        DropletUtils::releaseFBOViewport(_fboViewport[i]);
        release(_fboScene[i]);
    }

    if(_ownsFirstSurfaceMap)
        release(_surfaceMap[0]);
    release(_surfaceMap[1]);
    release(_normalMap);
    release(_tangentMap);
    release(_noiseMap);

    release(_normalShader);
    release(_tangentShader);
    release(_flowShader);
    release(_velocityShader);
    release(_displayShader);

    release(_material);
    release(_node);
}

TextureChunkPtr DropletFlow::createTexture(int internalFormat)
{
    // A map of no texels is an empty image, whose passes draw nothing.
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(GL_RGBA, std::max(_width, 0), std::max(_height, 0), 1, 1, 1, 0.0, NULL,
               GL_UNSIGNED_BYTE);
    endEditCP(image);

    TextureChunkPtr texture = TextureChunk::create();
    beginEditCP(texture);
    texture->setImage(image);
    texture->setInternalFormat(internalFormat);
    texture->setMinFilter(GL_LINEAR);
    texture->setMagFilter(GL_LINEAR);
    texture->setTarget(GL_TEXTURE_2D);
    texture->setEnvMode(GL_MODULATE);
    endEditCP(texture);

    return texture;
}

// --- parameters ------------------------------------------------------------------------

void DropletFlow::setFlowParams(float tickDelay, float timeStep, float density,
                                float viscosity, float frictionN, float frictionSigma)
{
    _timer->setTickDelay(tickDelay);

    setUniform(_velocityShader, "timeStep", Real32(timeStep));
    setUniform(_velocityShader, "density", Real32(density));
    setUniform(_velocityShader, "viscosity", Real32(viscosity));
    setUniform(_velocityShader, "frictionN", Real32(frictionN));
    setUniform(_velocityShader, "frictionSigma", Real32(frictionSigma));
    setUniform(_flowShader, "timeStep", Real32(timeStep));
}

void DropletFlow::setForce(Vec3f force)
{
    setUniform(_velocityShader, "force", force);
}

void DropletFlow::setDisplayParams(Vec4f fluidColor)
{
    setUniform(_displayShader, "fluidColor", fluidColor);
}

void DropletFlow::updateSceneTransform(void)
{
    Matrix inverse;
    inverse.setIdentity();

    if(_node != NullFC)
    {
        Matrix toWorld = _node->getToWorld();
        if(std::fabs(toWorld.det()) >= 1e-30f)
            toWorld.inverse(inverse);
    }

    setUniform(_velocityShader, "invViewMatrix", inverse);
}

void DropletFlow::updateShaderTextureParams(void)
{
    const Vec2f offset(1.f / Real32(_width), 1.f / Real32(_height));

    setUniform(_displayShader, "offset", offset);
    setUniform(_flowShader, "offset", offset);

    setUniform(_normalShader, "noiseMap", Int32(0));
    setUniform(_tangentShader, "noiseMap", Int32(0));

    setUniform(_velocityShader, "surfaceMap", Int32(0));
    setUniform(_velocityShader, "normalMap", Int32(1));
    setUniform(_velocityShader, "tangentMap", Int32(2));

    setUniform(_flowShader, "surfaceMap", Int32(0));
}

// --- noise and projected maps ------------------------------------------------------------

void DropletFlow::rebuildNoiseMap(int width, int height)
{
    if(width <= 0 || height <= 0 || width > MaxNoiseMapSize || height > MaxNoiseMapSize)
    {
        SWARNING << "DropletFlow::rebuildNoiseMap: a noise map of " << width << " x "
                 << height << " texels is out of range (1 to " << MaxNoiseMapSize
                 << "); keeping the old one" << std::endl;
        return;
    }

    if(_noiseMap == NullFC)
    {
        _noiseMap = TextureChunk::create();
        addRefCP(_noiseMap);

        beginEditCP(_noiseMap);
        _noiseMap->setInternalFormat(GL_RGBA8);
        _noiseMap->setMinFilter(GL_LINEAR);
        _noiseMap->setMagFilter(GL_LINEAR);
        _noiseMap->setTarget(GL_TEXTURE_2D);
        _noiseMap->setEnvMode(GL_MODULATE);
        endEditCP(_noiseMap);
    }

    // The generator is left unseeded: the application owns rand's state.
    const size_t count = size_t(width) * size_t(height) * 3;
    UInt8       *bytes = new UInt8[count];

    for(size_t i = 0; i < count; ++i)
    {
        const float unit = float(std::rand()) * 4.656613e-10f;
        bytes[i]         = UInt8(double(unit) * 255.0);
    }

    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(GL_RGB, width, height, 1, 1, 1, 0.0, bytes, GL_UNSIGNED_BYTE);
    endEditCP(image);

    beginEditCP(_noiseMap, TextureChunk::ImageFieldMask);
    _noiseMap->setImage(image);
    endEditCP(_noiseMap, TextureChunk::ImageFieldMask);

    delete[] bytes;
}

void DropletFlow::updateProjectedMaps(float angle)
{
    setUniform(_normalShader, "perturbAngle", Real32(angle));
    setUniform(_tangentShader, "perturbAngle", Real32(angle));

    updateProjectedMap(_normalShader, _normalMap, Color3f(0.f, 0.f, 1.f));
    updateProjectedMap(_tangentShader, _tangentMap, Color3f(1.f, 0.f, 0.f));
}

void DropletFlow::updateProjectedMap(SHLChunkPtr shader, TextureChunkPtr target,
                                     Color3f clearColor)
{
    DropletUtils     *utils  = DropletUtils::the();
    RenderActionBase *action = utils->getAction();

    if(_node == NullFC || action == NULL)
        return;

    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(shader, -2);
    material->addChunk(_noiseMap, 0);
    endEditCP(material);

    // Every geometry of the object is drawn with the projection shader.
    NodePtr root = utils->createMaterialGroup(material, cloneTree(_node));
    addRefCP(root);

    // The clear colours are raw texel values, not encoded vectors.
    SolidBackgroundPtr background = SolidBackground::create();
    beginEditCP(background);
    background->setColor(clearColor);
    endEditCP(background);

    FBOViewportPtr viewport = utils->createFBOViewport(root, target, background);

    if(viewport != NullFC)
    {
        addRefCP(viewport);

        // The object sits wherever it sits in its own coordinates, while
        // the pass's camera looks at the unit plane: culling against that
        // camera would drop parts of the unwrap.
        const bool culling = action->getFrustumCulling();
        action->setFrustumCulling(false);
        viewport->render(action);
        action->setFrustumCulling(culling);

        DropletUtils::releaseFBOViewport(viewport);
    }

    subRefCP(root);
}

// --- display material --------------------------------------------------------------------

void DropletFlow::initDropletDisplayMaterial(int matMode)
{
    if(matMode == 1)
        _displayShader = DropletUtils::the()->createShader(
            DisplayVertexProgram, std::string(FluidSurfaceProgram) + OverlayMainProgram);
    else if(matMode > 1)
        _displayShader = DropletUtils::the()->createShader(
            DisplayVertexProgram, std::string(FluidSurfaceProgram) + DiffuseMainProgram);

    if(_displayShader != NullFC)
        addRefCP(_displayShader);

    if(_material == NullFC)
        return;

    if(matMode == 0)
    {
        // The application's own chunks decide how the map is shown.
        beginEditCP(_material, ChunkMaterial::ChunksFieldMask);
        _material->addChunk(_surfaceMap[0], -2);
        endEditCP(_material, ChunkMaterial::ChunksFieldMask);
        return;
    }

    if(matMode < 0)
        return;

    MaterialChunkPtr colours = MaterialChunk::create();
    beginEditCP(colours);
    colours->setAmbient(Color4f(0.05f, 0.05f, 0.05f, 1.f));
    colours->setSpecular(Color4f(0.2f, 0.2f, 0.2f, 1.f));
    colours->setEmission(Color4f(0.05f, 0.05f, 0.05f, 1.f));
    colours->setShininess(80.f);
    endEditCP(colours);

    PolygonChunkPtr cull = PolygonChunk::create();
    beginEditCP(cull);
    cull->setCullFace(GL_BACK);
    endEditCP(cull);

    BlendChunkPtr blend = BlendChunk::create();
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);

    DepthChunkPtr depth = DepthChunk::create();
    beginEditCP(depth);
    depth->setEnable(true);
    depth->setFunc(GL_LEQUAL);
    depth->setNear(-1.f);
    depth->setFar(-1.f);
    depth->setReadOnly(false);
    endEditCP(depth);

    beginEditCP(_material, ChunkMaterial::ChunksFieldMask);
    _material->addChunk(_displayShader, -2);
    _material->addChunk(_surfaceMap[0], 1);
    _material->addChunk(colours, -2);
    _material->addChunk(cull, -2);
    _material->addChunk(blend, -2);
    _material->addChunk(depth, -2);
    endEditCP(_material, ChunkMaterial::ChunksFieldMask);

    setUniform(_displayShader, "surfaceMap", Int32(1));
    if(matMode > 1)
        setUniform(_displayShader, "diffuseMap", Int32(0));
}

// --- time steps ------------------------------------------------------------------------------

void DropletFlow::update(void)
{
    _timer->update();
}

bool DropletFlow::onTick(Timer *, double, int)
{
    renderNextFrame();
    // One step per update at most: a slow machine loses simulated time
    // instead of falling behind.
    return false;
}

void DropletFlow::renderNextFrame(void)
{
    RenderActionBase *action = DropletUtils::the()->getAction();

    if(action == NULL)
        return;

    for(int i = 0; i < 2; ++i)
    {
        if(_fboViewport[i] != NullFC)
            _fboViewport[i]->render(action);
    }
}

// --- inspection ----------------------------------------------------------------------------

NodePtr DropletFlow::dbgCreatePlane(TextureChunkPtr texture, float x)
{
    std::vector<StateChunkPtr> chunks(1, texture);

    TransformPtr xform = Transform::create();
    Matrix       m;
    m.setIdentity();
    m.setTranslate(x, -10.f, 10.f);
    beginEditCP(xform);
    xform->setMatrix(m);
    endEditCP(xform);

    NodePtr xformNode = Node::create();
    beginEditCP(xformNode);
    xformNode->setCore(xform);
    xformNode->addChild(DropletUtils::the()->createPlane(5.f, &chunks));
    endEditCP(xformNode);

    NodePtr group = Node::create();
    beginEditCP(group);
    group->setCore(Group::create());
    group->addChild(xformNode);
    endEditCP(group);

    return group;
}
