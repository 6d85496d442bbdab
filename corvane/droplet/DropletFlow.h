#ifndef _DROPLETFLOW_H_
#define _DROPLETFLOW_H_

#include <OpenSG/Timer.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGVector.h>

class DropletPlacer;

/// A thin film of fluid running over a textured object, simulated on the
/// GPU.
///
/// The state lives in a float texture laid over the object's texture
/// space, the surface map: red and green hold the velocity of the fluid in
/// map coordinates, blue its volume. The object enters once, by rendering
/// its (noise-perturbed) normals and tangents into two more maps. Each time
/// step is two full-screen passes: the velocity pass turns the external
/// force into acceleration along the surface and applies friction, the
/// advection pass moves volume to the neighbouring texels. The result is
/// shown through the display material (see initDropletDisplayMaterial).
///
/// The object needs a one-to-one unwrap in texture unit 0 and tangents in
/// texture unit 1 (DropletUtils::calcTangents).
class DropletFlow : public Timeable
{
  public:
    /// GL_RGBA16F_ARB: the format of the surface maps.
    static const int SurfaceMapFormat = 0x881A;

    /// Simulates on node's surface with width x height maps; texture, if
    /// given, serves as the first surface map. matMode chooses the chunks
    /// added to material (see initDropletDisplayMaterial).
    DropletFlow(osg::NodePtr            node,
                osg::ChunkMaterialPtr   material,
                int                     width,
                int                     height,
                int                     matMode,
                osg::TextureChunkPtr    texture);
    virtual ~DropletFlow(void);

    /// The timer's tick delay and the simulation's constants: time step,
    /// fluid density and viscosity, normal and tangential friction.
    void setFlowParams(float tickDelay, float timeStep, float density, float viscosity,
                       float frictionN, float frictionSigma);
    /// The sum of the external forces in world coordinates.
    void setForce(osg::Vec3f force);
    /// The fluid colour of the display shader, if there is one.
    void setDisplayParams(osg::Vec4f fluidColor);
    /// Brings the force into the object's coordinates at the next step.
    void updateSceneTransform(void);
    /// Sets the texel offset and the texture units of every shader.
    void updateShaderTextureParams(void);

    /// A new width x height map of random directions. The projected maps
    /// keep the old noise until updateProjectedMaps.
    void rebuildNoiseMap(int width, int height);
    /// Renders the object's normals and tangents, tilted by up to angle
    /// radians by the noise, into the normal and tangent maps.
    void updateProjectedMaps(float angle);
    /// Renders the object's unwrap with `shader` into `target`, cleared to
    /// clearColor first.
    void updateProjectedMap(osg::SHLChunkPtr     shader,
                            osg::TextureChunkPtr target,
                            osg::Color3f         clearColor);

    /// Adds chunks to the material: matMode 0 the surface map alone (the
    /// application shows it), 1 the overlay display shader, 2 and up the
    /// diffuse display shader with colours and back-face culling; below 0
    /// nothing.
    void                 initDropletDisplayMaterial(int matMode);
    /// A width x height texture chunk of that internal format, linearly
    /// filtered, without texels.
    osg::TextureChunkPtr createTexture(int internalFormat);

    /// Runs the timer: at most one step per call.
    void update(void);
    virtual bool onTick(Timer *timer, double age, int ticksLeft);
    /// One time step: the velocity pass, then the advection pass.
    void renderNextFrame(void);

    /// A 5 x 5 plane showing texture, at (x, -10, 10), for inspection.
    osg::NodePtr dbgCreatePlane(osg::TextureChunkPtr texture, float x);

    /// Owned by the simulation; the maps and the viewports come in pairs
    /// (ping-pong, index taken modulo 2).
    /// @{
    DropletPlacer *getPlacer(void) const { return _placer; }
    Timer         *getTimer(void) const { return _timer; }

    osg::NodePtr          getNode(void) const { return _node; }
    osg::ChunkMaterialPtr getMaterial(void) const { return _material; }
    osg::TextureChunkPtr  getSurfaceMap(int i) const { return _surfaceMap[i & 1]; }
    osg::TextureChunkPtr  getNormalMap(void) const { return _normalMap; }
    osg::TextureChunkPtr  getTangentMap(void) const { return _tangentMap; }
    osg::TextureChunkPtr  getNoiseMap(void) const { return _noiseMap; }
    osg::SHLChunkPtr      getFlowShader(void) const { return _flowShader; }
    osg::SHLChunkPtr      getDisplayShader(void) const { return _displayShader; }
    osg::SHLChunkPtr      getNormalShader(void) const { return _normalShader; }
    osg::SHLChunkPtr      getTangentShader(void) const { return _tangentShader; }
    osg::SHLChunkPtr      getVelocityShader(void) const { return _velocityShader; }
    osg::FBOViewportPtr   getFBOViewport(int i) const { return _fboViewport[i & 1]; }
    int                   getWidth(void) const { return _width; }
    int                   getHeight(void) const { return _height; }
    /// @}

  private:
    DropletFlow(const DropletFlow &);
    void operator=(const DropletFlow &);

    osg::NodePtr          _node;
    osg::ChunkMaterialPtr _material;
    osg::NodePtr          _fboScene[2];
    osg::SHLChunkPtr      _flowShader;
    osg::SHLChunkPtr      _displayShader;
    osg::SHLChunkPtr      _normalShader;
    osg::SHLChunkPtr      _tangentShader;
    osg::SHLChunkPtr      _velocityShader;
    osg::FBOViewportPtr   _fboViewport[2];
    osg::TextureChunkPtr  _surfaceMap[2];
    osg::TextureChunkPtr  _normalMap;
    osg::TextureChunkPtr  _tangentMap;
    osg::TextureChunkPtr  _noiseMap;
    int                   _width;
    int                   _height;
    DropletPlacer        *_placer;
    Timer                *_timer;

    /// False when the first surface map came from the caller.
    bool _ownsFirstSurfaceMap;
};

#endif
