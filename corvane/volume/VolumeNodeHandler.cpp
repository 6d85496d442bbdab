#include "VolumeNodeHandler.h"
#include "BVGeometry.h"
#include "BitVolume.h"
#include "BlockVolume.h"
#include "NormalVolume.h"
#include "RayGeneration.h"
#include "ShadingFunctions.h"
#include "Transferfunction.h"
#include "TraversalFunctions.h"
#include "VolumeData.h"

#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

namespace
{

const char *const RaycastingVertexShader = R"GLSL(#version 110
varying vec3 lightPos;
varying vec3 eyePos;
varying vec3 eyeVec;
varying vec3 oPosition;
varying vec3 normal;
uniform vec3 size;

void main()
{
    gl_Position = gl_Vertex;
    gl_TexCoord[0].rg = gl_MultiTexCoord0.rg;
    oPosition = gl_Vertex.xyz;
    eyePos = (gl_ModelViewMatrixInverse * vec4(0.0, 0.0, 0.0, 1.0)).xyz;
    lightPos = (gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz, 1.0)).xyz;
}
)GLSL";

const char *const RaycastingPreamble = R"GLSL(#version 110
#pragma optionNV(ifcvt none)
#extension GL_ARB_gpu_shader4 : enable
#extension GL_ARB_shader_texture_lod : enable

struct Ray
{
    vec3 origin;
    vec3 direction;
    float tnear;
    float tfar;
    float length;
    bool active;
};

struct SamplePoint
{
    vec3 position;
    float t;
    float stepsize;
    vec3 normal;
    vec4 value;
    vec4 color;
};

void initSamplePoint(inout SamplePoint sample, in float stepsize)
{
    sample.position = vec3(0.0, 0.0, 0.0);
    sample.t = 0.0;
    sample.stepsize = stepsize;
    sample.normal = vec3(0.0, 1.0, 0.0);
    sample.value = vec4(0.0);
    sample.color = vec4(0.0);
}

void storeSamplePoint(in SamplePoint current, out SamplePoint previous)
{
    previous.position = current.position;
    previous.t = current.t;
    previous.stepsize = current.stepsize;
    previous.normal = current.normal;
    previous.value = current.value;
    previous.color = current.color;
}

uniform sampler3D volume;
uniform sampler2D sceneColor;
uniform sampler2D sceneDepth;
uniform sampler2D frontTexture;
uniform sampler2D backTexture;
uniform vec3 volumeSize;
uniform vec3 volumeResolution;
uniform vec3 texelSize;
uniform float stepSize;
)GLSL";

const char *const RaycastingMain = R"GLSL(
void main()
{
    SamplePoint current;
    SamplePoint previous;
    initSamplePoint(current, stepSize);
    initSamplePoint(previous, stepSize);
    Ray ray;
    vec4 outColor = vec4(0.0);
    vec4 sceneRGBA = texture2DLod(sceneColor, gl_TexCoord[0].st, 0.0);
    getRayDirection(ray, current, previous);
    if(ray.active)
    {
        getRayStartPosition(ray, current, previous);
        traverseVolume(ray, current, previous, outColor);
    }
    gl_FragColor = vec4(mix(sceneRGBA.rgb, outColor.rgb, outColor.a), 1.0);
}
)GLSL";

template <class PtrT>
void releaseHeld(PtrT &ptr)
{
    if(ptr != NullFC)
        subRefCP(ptr);
    ptr = NullFC;
}

// larger than any sort key a scene uses for its own materials
const Int32 RaycasterSortKey = 0x7FFF0000;

} // namespace

VolumeNodeHandler::VolumeNodeHandler(void)
    : _raycasterGeometry(NullFC),
      _raycasterNode(NullFC),
      _raycastingMaterial(NullFC),
      _raycastingShader(NullFC),
      _frontPositionRoot(NullFC),
      _backPositionRoot(NullFC),
      _frontFacesNode(NullFC),
      _backFacesNode(NullFC),
      _backPositionGeometryNode(NullFC),
      _nearPlaneShader(NullFC),
      _backPositionShader(NullFC),
      _frontTransformNode(NullFC),
      _backTransformNode(NullFC),
      _backPositionMaterial(NullFC),
      _sceneColorTexture(NullFC),
      _sceneDepthTexture(NullFC),
      _frontTexture(NullFC),
      _backTexture(NullFC),
      _volumeData(NULL),
      _bvGeometry(NULL),
      _rayGeneration(NULL),
      _normalfunction(NULL),
      _transferfunction(NULL),
      _shadingfunction(NULL),
      _traversalfunction(NULL),
      _dimensions(-1.f, -1.f, -1.f),
      _textureUnit(0),
      _stepSize(0.0039f)
{
}

VolumeNodeHandler::~VolumeNodeHandler(void)
{
    cleanup();
}

void VolumeNodeHandler::cleanup(void)
{
    delete _volumeData;
    _volumeData  = NULL;
    _textureUnit = 0;

    releaseHeld(_raycastingMaterial);
    releaseHeld(_raycasterNode);
    releaseHeld(_raycasterGeometry);
    releaseHeld(_raycastingShader);
    releaseHeld(_frontTexture);
    releaseHeld(_backTexture);
    releaseHeld(_sceneColorTexture);
    releaseHeld(_sceneDepthTexture);
    releaseHeld(_backPositionShader);
    releaseHeld(_frontPositionRoot);
    releaseHeld(_backPositionRoot);

    delete _bvGeometry;
    delete _rayGeneration;
    delete _normalfunction;
    delete _transferfunction;
    delete _shadingfunction;
    delete _traversalfunction;
    _bvGeometry        = NULL;
    _rayGeneration     = NULL;
    _normalfunction    = NULL;
    _transferfunction  = NULL;
    _shadingfunction   = NULL;
    _traversalfunction = NULL;
}

bool VolumeNodeHandler::loadVolume(std::string file, bool swapBytes)
{
    delete _volumeData;
    _volumeData = new VolumeData;
    return _volumeData->loadVolume(file, swapBytes);
}

bool VolumeNodeHandler::setVolume(TextureChunkPtr voxels, bool swapBytes)
{
    delete _volumeData;
    _volumeData = new VolumeData;
    return _volumeData->setVolume(voxels, swapBytes);
}

void VolumeNodeHandler::setDimensions(const Vec3f &dimensions)
{
    _dimensions = dimensions;
}

void VolumeNodeHandler::setStepSize(float stepSize)
{
    _stepSize = stepSize;
    if(_raycastingShader == NullFC)
        return;
    beginEditCP(_raycastingShader, SHLChunk::ParametersFieldMask);
    _raycastingShader->setUniformParameter("stepSize", Real32(_stepSize));
    endEditCP(_raycastingShader, SHLChunk::ParametersFieldMask);
}

template <class StrategyT>
void VolumeNodeHandler::exchangeStrategy(StrategyT *&held, StrategyT *given)
{
    if(given != held)
        delete held;
    held = given;
    if(held != NULL)
        held->init(_volumeData);
    init();
}

void VolumeNodeHandler::setRayGeneration(RayGeneration *rayGeneration)
{
    exchangeStrategy(_rayGeneration, rayGeneration);
}

void VolumeNodeHandler::setNormalfunction(NormalVolume *normalfunction)
{
    exchangeStrategy(_normalfunction, normalfunction);
}

void VolumeNodeHandler::setShadingfunction(ShadingFunctions *shadingfunction)
{
    exchangeStrategy(_shadingfunction, shadingfunction);
}

void VolumeNodeHandler::setTraversalfunction(TraversalFunctions *traversalfunction)
{
    exchangeStrategy(_traversalfunction, traversalfunction);
}

void VolumeNodeHandler::setBVGeometry(BVGeometry *bvGeometry)
{
    exchangeStrategy(_bvGeometry, bvGeometry);
}

void VolumeNodeHandler::setTransferfunction(Transferfunction *transferfunction)
{
    if(transferfunction != NULL)
    {
        ImagePtr image = _volumeData != NULL ? _volumeData->getVolumeImage() : NullFC;
        transferfunction->setMode(image != NullFC && image->getDataType() == GL_UNSIGNED_SHORT ? 1
                                                                                               : 0);
    }
    if(transferfunction != _transferfunction)
        delete _transferfunction;
    _transferfunction = transferfunction;
    updateTransferfunction();
    init();
}

void VolumeNodeHandler::updateTransferfunction(void)
{
    if(_volumeData == NULL || _transferfunction == NULL)
        return;
    _transferfunction->init(_volumeData);
    _transferfunction->calcSummedAreaTable();
    _transferfunction->calcDependTransferTextur();
}

namespace
{

ImagePtr imageOf(const TextureChunkPtr &chunk)
{
    return chunk != NullFC ? chunk->getImage() : ImagePtr(NullFC);
}

/// The bit volume from the block grid and the transfer function's prefix
/// sum of opacity.
void refreshBitVolume(VolumeData *data, Transferfunction *transfer)
{
    if(data->getBitVolume() == NULL)
        data->setBitVolume(new BitVolume);
    ImagePtr blockImage = data->getBlockVolume() != NULL
                              ? data->getBlockVolume()->getBlockVolumeImage()
                              : ImagePtr(NullFC);
    data->getBitVolume()->calcBitVolumen(blockImage, imageOf(transfer->getSATextureChunk()));
}

} // namespace

void VolumeNodeHandler::updateBVGeometry(void)
{
    if(_volumeData == NULL || _bvGeometry == NULL || _transferfunction == NULL ||
       _volumeData->getBitVolume() == NULL)
        return;
    refreshBitVolume(_volumeData, _transferfunction);
    _bvGeometry->update(_volumeData);
}

void VolumeNodeHandler::exchange(TextureChunkPtr &held, TextureChunkPtr &given)
{
    if(given != NullFC)
        addRefCP(given);
    if(held != NullFC)
        subRefCP(held);
    held = given;
}

void VolumeNodeHandler::setFrontAndBackTexture(TextureChunkPtr &front, TextureChunkPtr &back)
{
    exchange(_frontTexture, front);
    exchange(_backTexture, back);
    setBackPositionMaterial();
    initMaterial();
}

void VolumeNodeHandler::setSceneTextures(TextureChunkPtr &color, TextureChunkPtr &depth)
{
    exchange(_sceneColorTexture, color);
    exchange(_sceneDepthTexture, depth);
    setBackPositionMaterial();
    initMaterial();
}

bool VolumeNodeHandler::init(void)
{
    if(_volumeData == NULL || _bvGeometry == NULL || _rayGeneration == NULL ||
       _normalfunction == NULL || _transferfunction == NULL || _shadingfunction == NULL ||
       _traversalfunction == NULL)
    {
        // a ray caster that has drawn before draws nothing until it is
        // whole again, instead of going on with a program of strategies
        // it no longer has
        if(_raycastingShader != NullFC)
        {
            beginEditCP(_raycastingShader, SHLChunk::FragmentProgramFieldMask);
            _raycastingShader->setFragmentProgram("void main()\n{\n    discard;\n}\n");
            endEditCP(_raycastingShader, SHLChunk::FragmentProgramFieldMask);
        }
        return true;
    }

    // blocks of edge 8, the inner step count of block skipping
    if(_volumeData->getBlockVolume() == NULL)
        _volumeData->setBlockVolume(new BlockVolume);
    _volumeData->getBlockVolume()->calcBlockVolumen(*_volumeData, 8);
    refreshBitVolume(_volumeData, _transferfunction);

    if(_bvGeometry->getBoundingGeometry() != NullFC)
    {
        _bvGeometry->update(_volumeData);
    }
    else
    {
        _bvGeometry->createBoundingGeometry(_volumeData);
        createStartpositionScenegraph();
        createBackpositionScenegraph();
        NodePtr proxy = _bvGeometry->getBoundingGeometry();
        if(proxy != NullFC)
        {
            NodeCorePtr core = proxy->getCore();
            NodePtr     users[3] = {_backFacesNode, _backPositionGeometryNode, _frontFacesNode};
            for(NodePtr user : users)
            {
                beginEditCP(user, Node::CoreFieldMask);
                user->setCore(core);
                endEditCP(user, Node::CoreFieldMask);
            }
        }
    }

    _normalfunction->init(_volumeData);

    if(_raycasterGeometry == NullFC)
    {
        createScreenQuad(_raycasterGeometry);
        addRefCP(_raycasterGeometry);
    }
    if(_raycasterNode == NullFC)
    {
        _raycasterNode = Node::create();
        addRefCP(_raycasterNode);
        setName(_raycasterNode, "VolumeNode");
        beginEditCP(_raycasterNode, Node::ChildrenFieldMask);
        _raycasterNode->addChild(_raycasterGeometry);
        endEditCP(_raycasterNode, Node::ChildrenFieldMask);
    }

    // the placement: the unit cube onto a box of the volume's extent
    // around the origin
    const Vec3f &size = _volumeData->getVolumeSize();
    Matrix       a(size[0], 0.f, 0.f, -size[0] / 2.f,
                   0.f, size[1], 0.f, -size[1] / 2.f,
                   0.f, 0.f, size[2], -size[2] / 2.f,
                   0.f, 0.f, 0.f, 1.f);
    Vec3f        extent;
    if(_dimensions[0] >= 0.f && _dimensions[1] >= 0.f && _dimensions[2] >= 0.f)
    {
        extent = _dimensions;
    }
    else
    {
        ImagePtr     image = _volumeData->getVolumeImage();
        const Vec3f &thick = _volumeData->getSliceThickness();
        if(image != NullFC)
            extent = Vec3f(image->getWidth() * thick[0], image->getHeight() * thick[1],
                           image->getDepth() * thick[2]);
    }
    Matrix placement;
    placement.setIdentity();
    for(int i = 0; i < 3; ++i)
        placement[i][i] = size[i] != 0.f ? extent[i] / size[i] : 0.f;
    placement.mult(a);

    TransformPtr transform = Transform::create();
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(placement);
    endEditCP(transform, Transform::MatrixFieldMask);
    beginEditCP(_raycasterNode, Node::CoreFieldMask);
    _raycasterNode->setCore(transform);
    endEditCP(_raycasterNode, Node::CoreFieldMask);

    return initMaterial();
}

bool VolumeNodeHandler::initMaterial(void)
{
    if(_raycastingShader == NullFC)
    {
        // the strategies bind every uniform they may need; a combination
        // that doesn't read one lets the compiler drop it, which is no fault
        _raycastingShader = SHLChunk::create();
        addRefCP(_raycastingShader);
        beginEditCP(_raycastingShader);
        _raycastingShader->setUnknownParameterWarning(false);
        endEditCP(_raycastingShader);
    }
    beginEditCP(_raycastingShader);
    _raycastingShader->clearProgramParameters();
    _raycastingShader->clearUniformParameters();
    endEditCP(_raycastingShader);

    std::string vertex   = getVertexShaderString();
    std::string fragment = getPreambleShaderString();
    if(_rayGeneration == NULL || _normalfunction == NULL || _transferfunction == NULL ||
       _shadingfunction == NULL || _traversalfunction == NULL)
        return false;
    // declare before use: shading calls classification and normals,
    // traversal calls doShading, main calls the ray and traversal functions
    fragment += _rayGeneration->getFragmentShaderString();
    fragment += _normalfunction->getFragmentShaderString();
    fragment += _transferfunction->getFragmentShaderString();
    fragment += _shadingfunction->getFragmentShaderString();
    fragment += _traversalfunction->getFragmentShaderString();
    fragment += getMainShaderString();

    beginEditCP(_raycastingShader, SHLChunk::VertexProgramFieldMask |
                                       SHLChunk::FragmentProgramFieldMask |
                                       SHLChunk::ParametersFieldMask);
    _raycastingShader->setVertexProgram(vertex);
    _raycastingShader->setFragmentProgram(fragment);
    _raycastingShader->getParameters().clear();
    endEditCP(_raycastingShader, SHLChunk::VertexProgramFieldMask |
                                     SHLChunk::FragmentProgramFieldMask |
                                     SHLChunk::ParametersFieldMask);

    if(_raycastingMaterial == NullFC)
    {
        // the quad composes the finished picture over the scene colour, so
        // it is drawn after everything else in the frame, wherever the scene
        // lists the volume
        _raycastingMaterial = ChunkMaterial::create();
        addRefCP(_raycastingMaterial);
        beginEditCP(_raycastingMaterial);
        _raycastingMaterial->setSortKey(RaycasterSortKey);
        endEditCP(_raycastingMaterial);
    }
    beginEditCP(_raycastingMaterial, ChunkMaterial::ChunksFieldMask);
    _raycastingMaterial->clearChunks();
    endEditCP(_raycastingMaterial, ChunkMaterial::ChunksFieldMask);

    _textureUnit = 0;
    setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit, _volumeData);
    _rayGeneration->setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit,
                                         _volumeData);
    _normalfunction->setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit,
                                          _volumeData);
    _transferfunction->setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit,
                                            _volumeData);
    _shadingfunction->setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit,
                                           _volumeData);
    _traversalfunction->setMaterialParameter(_raycastingMaterial, _raycastingShader, _textureUnit,
                                             _volumeData);

    GeometryPtr quad = _raycasterGeometry != NullFC
                           ? GeometryPtr::dcast(_raycasterGeometry->getCore())
                           : GeometryPtr(NullFC);
    if(quad == NullFC)
        return false;
    if(quad->getMaterial() != _raycastingMaterial)
    {
        beginEditCP(quad, Geometry::MaterialFieldMask);
        quad->setMaterial(_raycastingMaterial);
        endEditCP(quad, Geometry::MaterialFieldMask);
    }
    return true;
}

void VolumeNodeHandler::setMaterialParameter(ChunkMaterialPtr &material, SHLChunkPtr &shader,
                                             int &unit, VolumeData *data)
{
    if(material == NullFC || shader == NullFC)
        return;

    // the ray caster neither tests against nor writes depth: the scene's
    // depth comes in through the ray lengths
    DepthChunkPtr depth = DepthChunk::create();
    beginEditCP(depth);
    depth->setEnable(true);
    depth->setFunc(GL_ALWAYS);
    depth->setReadOnly(true);
    endEditCP(depth);

    beginEditCP(material, ChunkMaterial::ChunksFieldMask);
    material->addChunk(depth, State::AutoSlotReplace);
    material->addChunk(shader, State::AutoSlotReplace);
    endEditCP(material, ChunkMaterial::ChunksFieldMask);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("stepSize", Real32(_stepSize));

    TextureChunkPtr voxels = data != NULL ? data->getVolumeTextureChunk() : TextureChunkPtr(NullFC);
    if(voxels != NullFC)
    {
        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(voxels, State::AutoSlotReplace);
        endEditCP(material, ChunkMaterial::ChunksFieldMask);
        shader->setUniformParameter("volume", Int32(unit));
        shader->setUniformParameter("volumeSize", data->getVolumeSize());
        ImagePtr image = data->getVolumeImage();
        Vec3f    resolution(0.f, 0.f, 0.f), texel(0.f, 0.f, 0.f);
        if(image != NullFC)
            resolution = Vec3f(Real32(image->getWidth()), Real32(image->getHeight()),
                               Real32(image->getDepth()));
        for(int i = 0; i < 3; ++i)
            texel[i] = resolution[i] > 0.f ? 1.f / resolution[i] : 0.f;
        shader->setUniformParameter("volumeResolution", resolution);
        shader->setUniformParameter("texelSize", texel);
        ++unit;
    }

    const TextureChunkPtr textures[4] = {_frontTexture, _backTexture, _sceneColorTexture,
                                         _sceneDepthTexture};
    const char *const     names[4]    = {"frontTexture", "backTexture", "sceneColor",
                                         "sceneDepth"};
    for(int i = 0; i < 4; ++i)
    {
        if(textures[i] == NullFC)
            continue;
        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(textures[i], State::AutoSlotReplace);
        endEditCP(material, ChunkMaterial::ChunksFieldMask);
        shader->setUniformParameter(names[i], Int32(unit));
        ++unit;
    }
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

std::string VolumeNodeHandler::getVertexShaderString(void)
{
    return RaycastingVertexShader;
}

std::string VolumeNodeHandler::getPreambleShaderString(void)
{
    return RaycastingPreamble;
}

std::string VolumeNodeHandler::getMainShaderString(void)
{
    return RaycastingMain;
}
