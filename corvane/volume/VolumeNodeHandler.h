#ifndef _VOLUMENODEHANDLER_H_
#define _VOLUMENODEHANDLER_H_

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGVector.h>

#include <string>

class VolumeData;
class BVGeometry;
class RayGeneration;
class NormalVolume;
class Transferfunction;
class ShadingFunctions;
class TraversalFunctions;

/// Everything the GPU sees of one volume: the ray-casting shader, which is
/// concatenated from the texts of the strategy objects, its material, the
/// ray-caster node that the scene shows, and the start- and back-position
/// scene graphs that yield each ray's entry point, direction and length.
///
/// The handler owns the volume data and the six strategies. Any strategy
/// setter rebuilds the shader text and the material; setStepSize only sets
/// a uniform.
class VolumeNodeHandler
{
  public:
    VolumeNodeHandler(void);
    virtual ~VolumeNodeHandler(void);

    /// Replaces the volume data by one read from a file or adopted from a
    /// texture chunk; neither builds the GPU side (the strategy setters do).
    /// @{
    bool loadVolume(std::string file, bool swapBytes);
    bool setVolume(osg::TextureChunkPtr voxels, bool swapBytes);
    /// @}

    /// What the handler owns or holds: the data, the strategies, the
    /// ray-casting node and shader, the two position graphs with their
    /// transforms and shaders, and the four textures VolumeViewport renders.
    /// @{
    VolumeData         *getVolumeData(void) const { return _volumeData; }
    const osg::Vec3f   &getDimensions(void) const { return _dimensions; }
    osg::SHLChunkPtr    getRaycastingShader(void) const { return _raycastingShader; }
    osg::NodePtr        getRaycasterGeometry(void) const { return _raycasterGeometry; }
    osg::NodePtr        getRaycasterNode(void) const { return _raycasterNode; }
    RayGeneration      *getRayGeneration(void) const { return _rayGeneration; }
    NormalVolume       *getNormalfunction(void) const { return _normalfunction; }
    Transferfunction   *getTransferfunction(void) const { return _transferfunction; }
    ShadingFunctions   *getShadingfunction(void) const { return _shadingfunction; }
    TraversalFunctions *getTraversalfunction(void) const { return _traversalfunction; }
    BVGeometry         *getBVGeometry(void) const { return _bvGeometry; }
    osg::NodePtr        getFrontPositionScenegraphRoot(void) const { return _frontPositionRoot; }
    osg::NodePtr        getBackPositionScenegraphRoot(void) const { return _backPositionRoot; }
    osg::NodePtr        getFrontTransformNode(void) const { return _frontTransformNode; }
    osg::NodePtr        getBackTransformNode(void) const { return _backTransformNode; }
    osg::SHLChunkPtr    getNearPlaneShader(void) const { return _nearPlaneShader; }
    osg::SHLChunkPtr    getBackPositionShader(void) const { return _backPositionShader; }
    float               getStepSize(void) const { return _stepSize; }
    osg::TextureChunkPtr getFrontTexture(void) const { return _frontTexture; }
    osg::TextureChunkPtr getBackTexture(void) const { return _backTexture; }
    osg::TextureChunkPtr getSceneColorTexture(void) const { return _sceneColorTexture; }
    osg::TextureChunkPtr getSceneDepthTexture(void) const { return _sceneDepthTexture; }
    /// @}

    /// The extent of the volume in scene units, at the next init; a
    /// negative component takes it from the voxels and slice thickness.
    void setDimensions(const osg::Vec3f &dimensions);
    /// Sets the stepSize uniform; the shader is not rebuilt.
    void setStepSize(float stepSize);

    /// The strategy setters take ownership, delete the former object (unless
    /// it is the one given again), and rebuild.
    /// @{
    void setRayGeneration(RayGeneration *rayGeneration);
    void setNormalfunction(NormalVolume *normalfunction);
    void setShadingfunction(ShadingFunctions *shadingfunction);
    void setTraversalfunction(TraversalFunctions *traversalfunction);
    void setBVGeometry(BVGeometry *bvGeometry);
    /// @}
    /// Sets the table mode from the voxels' data type, stores the function,
    /// bakes its tables anew, and rebuilds.
    void setTransferfunction(Transferfunction *transferfunction);

    /// Re-initialises the transfer function and bakes its derived tables.
    void updateTransferfunction(void);
    /// For an application that changed the transfer function: recomputes
    /// the bit volume and the bounding geometry from it.
    void updateBVGeometry(void);

    /// The textures that VolumeViewport renders; each call rebuilds the
    /// back-position material and the ray-casting material.
    void setFrontAndBackTexture(osg::TextureChunkPtr &front, osg::TextureChunkPtr &back);
    /// The scene's colour and depth as VolumeViewport renders them; the
    /// ray caster mixes over the colour and stops rays at the depth.
    void setSceneTextures(osg::TextureChunkPtr &color, osg::TextureChunkPtr &depth);

    /// Builds or refreshes the GPU side once the data and all six
    /// strategies are there; true (doing nothing) before that.
    bool init(void);
    /// Concatenates the shader and rebuilds the material; false when a
    /// strategy is missing or the quad has no geometry.
    bool initMaterial(void);
    /// The handler's own part of the material: depth state, the shader,
    /// the voxels and the four viewport textures with their uniforms.
    void setMaterialParameter(osg::ChunkMaterialPtr &material, osg::SHLChunkPtr &shader,
                              int &textureUnit, VolumeData *volumeData);

    /// The material of the back-position pass, with the front texture, the
    /// scene depth and the viewport size.
    void setBackPositionMaterial(void);
    /// Build the graphs that VolumeViewport renders into the ray entry
    /// (front) and exit (back) textures, over the bounding geometry.
    /// @{
    void createStartpositionScenegraph(void);
    void createBackpositionScenegraph(void);
    /// @}
    /// A node with a quad whose corners are (+-1, +-1): drawn unprojected
    /// it covers the viewport.
    static void createScreenQuad(osg::NodePtr &node);

    /// The handler's own parts of the concatenated ray-casting shader: the
    /// vertex program, the uniforms ahead of the strategies' functions, and
    /// the main function that calls them.
    /// @{
    std::string getVertexShaderString(void);
    std::string getPreambleShaderString(void);
    std::string getMainShaderString(void);
    /// @}

  protected:
    /// Releases every node, chunk and texture reference and deletes the
    /// data and the strategies.
    void cleanup(void);

  private:
    VolumeNodeHandler(const VolumeNodeHandler &);
    VolumeNodeHandler &operator=(const VolumeNodeHandler &);

    /// Deletes the held strategy for the given one, initialises it with the
    /// volume data and rebuilds.
    template <class StrategyT>
    void exchangeStrategy(StrategyT *&held, StrategyT *given);

    /// Exchanges a held texture reference.
    static void exchange(osg::TextureChunkPtr &held, osg::TextureChunkPtr &given);

    osg::NodePtr          _raycasterGeometry;
    osg::NodePtr          _raycasterNode;
    osg::ChunkMaterialPtr _raycastingMaterial;
    osg::SHLChunkPtr      _raycastingShader;
    osg::NodePtr          _frontPositionRoot;
    osg::NodePtr          _backPositionRoot;
    osg::NodePtr          _frontFacesNode;
    osg::NodePtr          _backFacesNode;
    osg::NodePtr          _backPositionGeometryNode;
    osg::SHLChunkPtr      _nearPlaneShader;
    osg::SHLChunkPtr      _backPositionShader;
    osg::NodePtr          _frontTransformNode;
    osg::NodePtr          _backTransformNode;
    osg::ChunkMaterialPtr _backPositionMaterial;
    osg::TextureChunkPtr  _sceneColorTexture;
    osg::TextureChunkPtr  _sceneDepthTexture;
    osg::TextureChunkPtr  _frontTexture;
    osg::TextureChunkPtr  _backTexture;

    VolumeData         *_volumeData;
    BVGeometry         *_bvGeometry;
    RayGeneration      *_rayGeneration;
    NormalVolume       *_normalfunction;
    Transferfunction   *_transferfunction;
    ShadingFunctions   *_shadingfunction;
    TraversalFunctions *_traversalfunction;

    osg::Vec3f _dimensions;
    int        _textureUnit;
    float      _stepSize;
};

#endif
