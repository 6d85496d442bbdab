/// Makes the off-screen passes of the droplet simulation (shader chunks,
/// full-screen plane scenes, FBOViewport targets) and remembers the window
/// and render action of the current frame for code that runs outside a
/// draw call.
///
/// The window and action are those handed to updateWindowState in this
/// frame; DropletFlowViewport::render updates them before anything here
/// is used, and they mean nothing once the frame is over.
#ifndef _DROPLETUTILS_H_
#define _DROPLETUTILS_H_

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGStateChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

#include <string>
#include <vector>

class DropletUtils
{
  public:
    /// The one instance, made on first use.
    static DropletUtils *the(void);

    ~DropletUtils(void);

    /// Remembers the window and action of the frame being drawn, which the
    /// helpers below render with.
    void updateWindowState(osg::WindowPtr window, osg::RenderActionBase *action);

    /// As updateWindowState was last given them.
    /// @{
    osg::WindowPtr         getWindow(void) const { return _window; }
    osg::RenderActionBase *getAction(void) const { return _action; }
    /// @}

    /// A new shader chunk with the two programs.
    osg::SHLChunkPtr createShader(std::string vertex, std::string fragment);

    /// A group over a unit plane whose material holds the chunks in the
    /// given order, each in the first free slot of its class, so texture
    /// chunks take units 0, 1, 2, ... as they come.
    osg::NodePtr createFBOScene(std::vector<osg::StateChunkPtr> *chunks);

    /// A plane of size x size units facing +z (makePlaneGeo, one segment)
    /// on a node of its own, whose material holds the chunks in the given
    /// order, each in the first free slot of its class.
    osg::NodePtr createPlane(float size, std::vector<osg::StateChunkPtr> *chunks);

    /// A node that draws child with material (a MaterialGroup core).
    osg::NodePtr createMaterialGroup(osg::MaterialPtr material, osg::NodePtr child);

    /// A viewport that renders root into target at the size of target's
    /// image, through a camera that sees the unit plane of createFBOScene
    /// fill the picture, with background (a grey SolidBackground if null),
    /// in the window of this frame. The viewport's fields don't count
    /// references, so the camera, its beacon and the background get one
    /// each on the viewport's behalf; releaseFBOViewport gives them back.
    /// A null target, or one without an image: NullFC and a log line.
    osg::FBOViewportPtr createFBOViewport(osg::NodePtr          root,
                                          osg::TextureChunkPtr  target,
                                          osg::BackgroundPtr    background);

    /// Drops the references createFBOViewport took for the viewport's
    /// camera, beacon and background, and one reference on the viewport.
    static void releaseFBOViewport(osg::FBOViewportPtr viewport);

    /// Depth first: the geometry cores at and below node, in order.
    void collectGeometry(osg::NodePtr node, std::vector<osg::GeometryPtr> &result);

    /// Writes per-vertex tangents of texture unit 0's coordinates into the
    /// texture coordinates of unit texUnit (2 or 3; any other value means
    /// 1) of every geometry below node. The droplet simulation reads them
    /// from unit 1, so an application calls this with 1 to prepare its
    /// object.
    void calcTangents(osg::NodePtr node, int texUnit);

  private:
    DropletUtils(void);
    DropletUtils(const DropletUtils &);
    void operator=(const DropletUtils &);

    osg::WindowPtr         _window;
    osg::RenderActionBase *_action;

    static DropletUtils *the_;
};

#endif
