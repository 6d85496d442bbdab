/// The demo scenes the main program renders headless to PNG files.
#ifndef _CORVANE_DEMOSCENE_H_
#define _CORVANE_DEMOSCENE_H_

#include <OpenSG/OSGBaseTypes.h>

namespace corvane
{

/// Renders a lit, textured and shaded scene (a textured sphere, a torus with
/// a GLSL shader, a checkered floor) into an off-screen window and writes it
/// to fileName as PNG. False, with a log line, when there is no GL context
/// or the file can't be written.
bool renderShadedScene(const char *fileName, osg::UInt32 width, osg::UInt32 height);

} // namespace corvane

#endif
