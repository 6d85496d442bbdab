// The two small scene graphs of a volume handler that are rendered into
// float textures ahead of the ray caster: the start-position graph writes
// where each ray enters the volume (or the near-plane point when the camera
// is inside), the back-position graph writes each ray's direction and its
// length, cut where the scene's opaque surfaces lie in front of the volume's
// back side. Positions are unit-cube volume coordinates.
#include "VolumeNodeHandler.h"

#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

namespace
{

const char *const NearPlaneVertexShader = R"GLSL(#version 110
uniform mat4 viewToVolume;
varying vec3 oPosition;

void main()
{
    vec4 temp = gl_ProjectionMatrixInverse * vec4(gl_Vertex.xy, -1.0, 1.0);
    temp /= temp.w;
    oPosition = (viewToVolume * temp).xyz;
    gl_Position = vec4(gl_Vertex.xy, -1.0, 1.0);
}
)GLSL";

const char *const NearPlaneFragmentShader = R"GLSL(#pragma optionNV(ifcvt none)
varying vec3 oPosition;

void main()
{
    gl_FragColor = vec4(oPosition, 0.0);
}
)GLSL";

const char *const PositionVertexShader = R"GLSL(#version 110
varying vec3 texCoords;

void main()
{
    texCoords = gl_Vertex.rgb;
    gl_Position = ftransform();
}
)GLSL";

const char *const StartPositionFragmentShader = R"GLSL(#version 110
varying vec3 texCoords;

void main()
{
    gl_FragColor = vec4(texCoords, 1.0);
}
)GLSL";

const char *const BackPositionFragmentShader = R"GLSL(#pragma optionNV(ifcvt none)
uniform vec2 textureSize;
uniform vec2 depthRange;
uniform sampler2D startImage;
uniform sampler2D sceneDepth;
varying vec3 texCoords;

void main()
{
    vec4 backFaceColor = vec4(texCoords, 1.0);
    vec2 texCoordScene = gl_FragCoord.xy / textureSize;
    float depth = texture2D(sceneDepth, texCoordScene).r;
    vec4 ndc = 2.0 * vec4(texCoordScene, depth, 1.0) - vec4(1.0);

    // eye depth of the scene's surface from the depth buffer
    float ZNEAR = depthRange.x;
    float ZFAR = depthRange.y;
    float A = ZNEAR + ZFAR;
    float B = ZNEAR - ZFAR;
    float C = 2.0 * ZNEAR * ZFAR;
    float D = ndc.z * B;
    float ZEYE = -(C / (A + D));

    vec4 clipPos;
    clipPos.w = -ZEYE;
    clipPos.xyz = ndc.xyz * clipPos.w;
    vec4 volumeCoords = gl_ModelViewMatrixInverse * (gl_ProjectionMatrixInverse * clipPos);

    vec4 frontFaceColor = texture2D(startImage, texCoordScene);
    vec3 diffFrontBack = backFaceColor.rgb - frontFaceColor.rgb;
    float lengthDirectionTemp = length(diffFrontBack);
    vec3 diffFrontScene = volumeCoords.rgb - frontFaceColor.rgb;
    float signDot = sign(dot(diffFrontBack, diffFrontScene));
    float lengthScene = signDot * length(diffFrontScene);
    float finalLength = min(lengthScene, lengthDirectionTemp);
    float lengthDirection = max(0.0, finalLength * frontFaceColor.a);
    gl_FragColor = vec4(normalize(diffFrontBack), lengthDirection);
}
)GLSL";

void addChild(const NodePtr &parent, const NodePtr &child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

SHLChunkPtr makeShader(const char *vertex, const char *fragment)
{
    SHLChunkPtr shader = SHLChunk::create();
    beginEditCP(shader);
    shader->setVertexProgram(vertex);
    shader->setFragmentProgram(fragment);
    endEditCP(shader);
    return shader;
}

PolygonChunkPtr makeCulling(GLenum face)
{
    PolygonChunkPtr polygon = PolygonChunk::create();
    beginEditCP(polygon);
    polygon->setCullFace(face);
    endEditCP(polygon);
    return polygon;
}

DepthChunkPtr makeDepth(bool enable, GLenum func)
{
    DepthChunkPtr depth = DepthChunk::create();
    beginEditCP(depth);
    depth->setEnable(enable);
    depth->setFunc(func);
    endEditCP(depth);
    return depth;
}

ColorMaskChunkPtr makeColorMask(bool rgb, bool alpha)
{
    ColorMaskChunkPtr mask = ColorMaskChunk::create();
    beginEditCP(mask);
    mask->setMaskR(rgb);
    mask->setMaskG(rgb);
    mask->setMaskB(rgb);
    mask->setMaskA(alpha);
    endEditCP(mask);
    return mask;
}

/// A material-group node with the chunks in the given order and the sort
/// key that orders it inside its pass, over child.
NodePtr materialNode(Int32 sortKey, std::initializer_list<StateChunkPtr> chunks,
                     const NodePtr &child)
{
    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    for(const StateChunkPtr &chunk : chunks)
        material->addChunk(chunk, State::AutoSlotReplace);
    material->setSortKey(sortKey);
    endEditCP(material);

    MaterialGroupPtr group = MaterialGroup::create();
    beginEditCP(group);
    group->setMaterial(material);
    endEditCP(group);

    NodePtr node = makeNodeFor(group);
    addChild(node, child);
    return node;
}

} // namespace

void VolumeNodeHandler::createScreenQuad(NodePtr &node)
{
    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    beginEditCP(types);
    types->push_back(GL_QUADS);
    endEditCP(types);
    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32::create();
    beginEditCP(lengths);
    lengths->push_back(4);
    endEditCP(lengths);
    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(indices);
    for(UInt32 i = 0; i < 4; ++i)
        indices->push_back(i);
    endEditCP(indices);
    GeoPositions2fPtr positions = GeoPositions2f::create();
    beginEditCP(positions);
    positions->push_back(Vec2f(-1.f, -1.f));
    positions->push_back(Vec2f(1.f, -1.f));
    positions->push_back(Vec2f(1.f, 1.f));
    positions->push_back(Vec2f(-1.f, 1.f));
    endEditCP(positions);
    GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    beginEditCP(texCoords);
    texCoords->push_back(Vec2f(0.f, 0.f));
    texCoords->push_back(Vec2f(1.f, 0.f));
    texCoords->push_back(Vec2f(1.f, 1.f));
    texCoords->push_back(Vec2f(0.f, 1.f));
    endEditCP(texCoords);

    GeometryPtr geometry = Geometry::create();
    beginEditCP(geometry);
    geometry->setTypes(types);
    geometry->setLengths(lengths);
    geometry->setIndices(indices);
    geometry->setPositions(positions);
    geometry->setTexCoords(texCoords);
    endEditCP(geometry);

    node = makeNodeFor(geometry);
}

void VolumeNodeHandler::createStartpositionScenegraph(void)
{
    if(_frontPositionRoot != NullFC)
        subRefCP(_frontPositionRoot);

    _frontFacesNode     = Node::create();
    _backFacesNode      = Node::create();
    _frontTransformNode = makeNodeFor(Transform::create());
    SHLChunkPtr frontShader = makeShader(PositionVertexShader, StartPositionFragmentShader);
    SHLChunkPtr backShader  = makeShader(PositionVertexShader, StartPositionFragmentShader);
    // front faces write their entry point; back faces only mark with alpha
    // where the volume covers the pixel, which leaves the near-plane point
    // as the entry of a camera inside the volume
    addChild(_frontTransformNode,
             materialNode(3,
                          {makeCulling(GL_BACK), frontShader, makeDepth(true, GL_LEQUAL),
                           makeColorMask(true, true)},
                          _frontFacesNode));
    addChild(_frontTransformNode,
             materialNode(2,
                          {makeCulling(GL_FRONT), backShader, makeDepth(true, GL_LEQUAL),
                           makeColorMask(false, true)},
                          _backFacesNode));

    _nearPlaneShader = makeShader(NearPlaneVertexShader, NearPlaneFragmentShader);
    NodePtr quad;
    createScreenQuad(quad);
    NodePtr nearPlane = makeNodeFor(Transform::create());
    addChild(nearPlane, materialNode(1, {_nearPlaneShader, makeDepth(false, GL_LEQUAL)}, quad));

    _frontPositionRoot = makeNodeFor(Group::create());
    addRefCP(_frontPositionRoot);
    addChild(_frontPositionRoot, _frontTransformNode);
    addChild(_frontPositionRoot, nearPlane);
}

void VolumeNodeHandler::createBackpositionScenegraph(void)
{
    if(_backPositionRoot != NullFC)
        subRefCP(_backPositionRoot);

    _backPositionGeometryNode = Node::create();
    _backPositionMaterial     = ChunkMaterial::create();
    MaterialGroupPtr group    = MaterialGroup::create();
    beginEditCP(group);
    group->setMaterial(_backPositionMaterial);
    endEditCP(group);
    NodePtr materialNode = makeNodeFor(group);
    addChild(materialNode, _backPositionGeometryNode);
    _backTransformNode = makeNodeFor(Transform::create());
    addChild(_backTransformNode, materialNode);

    _backPositionRoot = makeNodeFor(Group::create());
    addRefCP(_backPositionRoot);
    addChild(_backPositionRoot, _backTransformNode);

    setBackPositionMaterial();
}

void VolumeNodeHandler::setBackPositionMaterial(void)
{
    if(_sceneDepthTexture == NullFC || _frontTexture == NullFC || _backPositionMaterial == NullFC)
        return;

    Vec2f    size(512.f, 512.f);
    ImagePtr image = _frontTexture->getImage();
    if(image != NullFC)
        size = Vec2f(Real32(image->getWidth()), Real32(image->getHeight()));

    beginEditCP(_backPositionMaterial, ChunkMaterial::ChunksFieldMask);
    _backPositionMaterial->clearChunks();
    endEditCP(_backPositionMaterial, ChunkMaterial::ChunksFieldMask);

    if(_backPositionShader == NullFC)
    {
        _backPositionShader = makeShader(PositionVertexShader, BackPositionFragmentShader);
        addRefCP(_backPositionShader);
    }
    // depthRange is the camera's near and far, set by the viewport each frame
    beginEditCP(_backPositionShader, SHLChunk::ParametersFieldMask);
    _backPositionShader->setUniformParameter("textureSize", size);
    _backPositionShader->setUniformParameter("depthRange", Vec2f(0.01f, 100.f));
    _backPositionShader->setUniformParameter("startImage", Int32(0));
    _backPositionShader->setUniformParameter("sceneDepth", Int32(1));
    endEditCP(_backPositionShader, SHLChunk::ParametersFieldMask);

    // with GL_GEQUAL over a depth buffer cleared to 0 the farthest back face
    // survives; the order of the textures makes startImage unit 0 and
    // sceneDepth unit 1
    beginEditCP(_backPositionMaterial);
    _backPositionMaterial->addChunk(makeCulling(GL_FRONT), State::AutoSlotReplace);
    _backPositionMaterial->addChunk(_frontTexture, State::AutoSlotReplace);
    _backPositionMaterial->addChunk(_sceneDepthTexture, State::AutoSlotReplace);
    _backPositionMaterial->addChunk(_backPositionShader, State::AutoSlotReplace);
    _backPositionMaterial->addChunk(makeDepth(true, GL_GEQUAL), State::AutoSlotReplace);
    _backPositionMaterial->addChunk(makeColorMask(true, true), State::AutoSlotReplace);
    endEditCP(_backPositionMaterial);
}
