/// What the demo scenes share: a holder of counted references, small scene
/// builders, and the step that renders a window into a PNG file through the
/// library's screen-dump foreground.
#ifndef _CORVANE_DEMOSUPPORT_H_
#define _CORVANE_DEMOSUPPORT_H_

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGViewport.h>

#include <vector>

namespace corvane
{

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
    std::vector<osg::FieldContainerPtr> _held;
};

/// A square image of edge x edge RGB texels in cells x cells squares of a and b.
osg::ImagePtr makeChecker(osg::UInt32 edge, osg::UInt32 cells, osg::Color3f a, osg::Color3f b);

/// A transform node at `at`, turned by `rotation`, over child.
osg::NodePtr placed(Holder &h, osg::NodePtr child, const osg::Vec3f &at,
                    const osg::Quaternion &rotation);

/// Sets the material of the geometry core of node.
void setMaterial(osg::NodePtr node, osg::MaterialPtr material);

/// A lit material with image as a modulated, mipmapped texture.
osg::SimpleMaterialPtr texturedMaterial(osg::ImagePtr image, osg::Color3f diffuse);

osg::BackgroundPtr makeSolid(Holder &h, const osg::Color3f &c);

/// A camera on its own beacon under root, at `from` looking at `at`, with a
/// vertical field of view of fovDeg degrees.
osg::PerspectiveCameraPtr makeCamera(Holder &h, const osg::NodePtr &root, const osg::Pnt3f &from,
                                     const osg::Pnt3f &at, osg::Real32 fovDeg = 45.f);

/// Adds a viewport over [left, right] of the window's width.
osg::ViewportPtr addPort(Holder &h, const osg::WindowPtr &win, const osg::CameraPtr &camera,
                         const osg::NodePtr &root, const osg::BackgroundPtr &background,
                         osg::Real32 left, osg::Real32 right);

/// A headless window of width x height; NullFC, with a log line, when there
/// is no OpenGL context.
osg::EGLWindowPtr openWindow(Holder &h, osg::UInt32 width, osg::UInt32 height);

/// Adds a last port over the whole window whose screen dump writes the
/// composed frame; the dump stays inactive until renderFrameToFile asks.
osg::ScreenDumpForegroundPtr addDumpPort(Holder &h, const osg::WindowPtr &win);

/// Renders one frame with the dump writing it into fileName; true when
/// the file is there and not empty.
bool renderFrameToFile(const osg::WindowPtr &win, osg::RenderAction *action,
                       const osg::ScreenDumpForegroundPtr &dump, const char *fileName);

/// Adds a last port that grabs the composed frame into fileName, renders
/// the window once (frames times in all), and removes the window's ports.
/// False, with a log line, when the file was not written.
bool renderToFile(Holder &h, const osg::WindowPtr &win, const char *fileName,
                  osg::UInt32 frames = 1);

} // namespace corvane

#endif
