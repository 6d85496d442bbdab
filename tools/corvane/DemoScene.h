/// The demo scenes the main program renders headless to PNG files. Each
/// subsystem adds its scenes in a file of scenes/ with a DemoSceneRegistration.
#ifndef _CORVANE_DEMOSCENE_H_
#define _CORVANE_DEMOSCENE_H_

#include <OpenSG/OSGBaseTypes.h>

#include <string>
#include <vector>

namespace corvane
{

/// Renders one scene headless into fileName as PNG; false, with a log line,
/// when there is no GL context or the file can't be written.
typedef bool (*DemoSceneFunction)(const char *fileName, osg::UInt32 width, osg::UInt32 height);

/// Registers a scene by name at static-initialisation time.
struct DemoSceneRegistration
{
    DemoSceneRegistration(const char *name, const char *summary, DemoSceneFunction render);
};

/// The names of all registered scenes, sorted.
std::vector<std::string> demoSceneNames(void);

/// The one-line summary of a scene; empty for an unknown name.
std::string demoSceneSummary(const std::string &name);

/// Renders the named scene headless and writes it to fileName as PNG
/// through a screen-dump foreground. False, with a log line, for an unknown
/// name, without a GL context, or when the file can't be written.
bool renderDemoScene(const std::string &name, const char *fileName, osg::UInt32 width,
                     osg::UInt32 height);

} // namespace corvane

#endif
