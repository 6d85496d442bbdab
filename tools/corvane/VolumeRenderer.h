/// The volume renderer of the main program: a volume (a file or the
/// built-in Shepp-Logan phantom) ray cast through a VolumeViewport ahead of
/// an ordinary viewport, optionally cut by an opaque mesh, rendered headless
/// into PNG files.
#ifndef _CORVANE_VOLUMERENDERER_H_
#define _CORVANE_VOLUMERENDERER_H_

#include <OpenSG/OSGBaseTypes.h>

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

/// The style names the renderer knows.
const std::vector<std::string> &volumeStyles(void);

/// Renders as the options say; the per-frame times in milliseconds go to
/// frameTimes when it is given. False, with one line in error, when the
/// volume, the transfer function or the output can't be used.
bool renderVolume(const VolumeRenderOptions &options, std::string &error,
                  std::vector<double> *frameTimes = NULL);

} // namespace corvane

#endif
