/// The demo scenes the main program renders headless to PNG files.
#ifndef _CORVANE_DEMOSCENE_H_
#define _CORVANE_DEMOSCENE_H_

#include <OpenSG/OSGBaseTypes.h>

#include <string>
#include <vector>

namespace corvane
{

/// Renders a lit, textured and shaded scene (a textured sphere, a torus with
/// a GLSL shader, a checkered floor) into an off-screen window and writes it
/// to fileName as PNG. False, with a log line, when there is no GL context
/// or the file can't be written.
bool renderShadedScene(const char *fileName, osg::UInt32 width, osg::UInt32 height);

/// The demo scenes by name: "shaded" (the scene above), "sky" (the same
/// objects under a sky dome, seen from low down), "calibrated" (the shaded
/// scene through a colour-calibration display filter that lifts dim corners
/// and warms the panel) and "hmd" (a stereo pair under the sky dome, each
/// eye warped for its lens with chromatic correction).
const std::vector<std::string> &demoSceneNames(void);

/// Renders the named scene headless and writes it to fileName as PNG
/// through a screen-dump foreground. False, with a log line, for an unknown
/// name, without a GL context, or when the file can't be written.
bool renderDemoScene(const std::string &name, const char *fileName, osg::UInt32 width,
                     osg::UInt32 height);

} // namespace corvane

#endif
