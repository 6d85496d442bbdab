/// The volume renderer of the main program: a volume (a file or the
/// built-in Shepp-Logan phantom) ray cast through a VolumeViewport ahead of
/// an ordinary viewport, optionally cut by an opaque mesh, rendered headless
/// into PNG files.
#ifndef _CORVANE_VOLUMERENDERER_H_
#define _CORVANE_VOLUMERENDERER_H_

#include "DemoSupport.h"

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGVolumeNode.h>

#include <functional>

#include <string>
#include <vector>

namespace corvane
{

struct VolumeRenderOptions
{
    std::string file;            ///< volume file; empty: the built-in phantom
    unsigned    phantomSize = 96;
    std::string transfer;        ///< transfer-function file or preset name; empty: the default
    std::string output = "volume.png";
    unsigned    width  = 512;
    unsigned    height = 512;
    unsigned    frames = 1;      ///< more than 1: an orbit, one numbered PNG a frame
    std::string style  = "dvr";  ///< dvr, lit, mip, xray or boundary
    unsigned    traversal = 1;   ///< 1 simple, 2 block skipping
    unsigned    rayGen    = 1;   ///< 1 simple, 2 interleaved
    unsigned    normals   = 2;   ///< 1 precomputed, 2 central differences, 3 Sobel
    bool        preintegrated = false;
    float       stepSize = 0.004f;
    bool        volume   = true; ///< false: the mesh alone, no volume
    bool        mesh     = true; ///< an opaque sphere that cuts into the volume
    std::string meshFile;        ///< a scene file (OBJ, PLY, STL, glTF, ...) shown instead of the sphere
    float       azimuth   = 30.f; ///< degrees around the vertical axis
    float       elevation = 20.f; ///< degrees above the horizon
    float       distance  = 2.2f; ///< camera distance in units of the volume's extent
    bool        progress  = false; ///< a progress bar on standard error while loading
};

/// The data folder (presets, sample volumes and meshes): CORVANE_DATA_DIR
/// from the environment, else the installed or the source tree's data/.
std::string dataDirectory(void);

/// What the renderer and the viewer draw: a sun over the volume and the
/// mesh (the sphere, or a mesh file scaled into the volume).
struct VolumeScene
{
    osg::NodePtr       root;
    osg::VolumeNodePtr volume; ///< NullFC without a volume
    osg::ImagePtr      image;  ///< the voxels; NullFC without a volume
    osg::Vec3f         extent; ///< the volume's size, or the mesh's without one
};

/// Reports progress while a scene is built: percent and what is being done.
typedef std::function<void(int percent, const char *what)> ProgressStep;

/// Reads the volume, the transfer function and the mesh the options name
/// and builds the scene; the containers are kept by h. Needs no GL
/// context. False, with one line in error, when a file can't be used.
bool buildVolumeScene(Holder &h, const VolumeRenderOptions &options, VolumeScene &scene,
                      std::string &error, const ProgressStep &step = ProgressStep());

/// Gives the volume the shading style of a name (see volumeStyles); the
/// new style containers are kept by h.
void applyStyle(Holder &h, const osg::VolumeNodePtr &volume, const std::string &style);

/// The words the renderer and the viewer read alike, for a word the
/// command did not take itself: --size W H (the picture's or the window's,
/// as sizeWhat says), --transfer FILE|NAME, --style NAME, --step S, --mesh
/// FILE, and the volume file. i moves past the values it takes. False,
/// with one line in error, for a bad value, an unknown option or a second
/// volume file.
bool parseSharedOption(int argc, char **argv, int &i, VolumeRenderOptions &options,
                       const char *sizeWhat, std::string &error);

/// The style names the renderer knows.
const std::vector<std::string> &volumeStyles(void);

/// Renders as the options say; the per-frame times in milliseconds go to
/// frameTimes when it is given. False, with one line in error, when the
/// volume, the transfer function or the output can't be used.
bool renderVolume(const VolumeRenderOptions &options, std::string &error,
                  std::vector<double> *frameTimes = NULL);

} // namespace corvane

#endif
