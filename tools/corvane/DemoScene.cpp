#include "DemoScene.h"

#include <OpenSG/OSGLog.h>

#include <map>

OSG_USING_NAMESPACE

namespace corvane
{

namespace
{

struct Entry
{
    std::string       summary;
    DemoSceneFunction render;
};

// a function-local map, so registrations from any translation unit find it
// constructed whatever the order of static initialisation
std::map<std::string, Entry> &registry(void)
{
    static std::map<std::string, Entry> scenes;
    return scenes;
}

} // namespace

DemoSceneRegistration::DemoSceneRegistration(const char *name, const char *summary,
                                             DemoSceneFunction render)
{
    registry()[name] = Entry{summary, render};
}

std::vector<std::string> demoSceneNames(void)
{
    std::vector<std::string> names;
    for(const auto &scene : registry())
        names.push_back(scene.first);
    return names;
}

std::string demoSceneSummary(const std::string &name)
{
    auto it = registry().find(name);
    return it == registry().end() ? std::string() : it->second.summary;
}

bool renderDemoScene(const std::string &name, const char *fileName, UInt32 width, UInt32 height)
{
    auto it = registry().find(name);
    if(it == registry().end())
    {
        FWARNING(("renderDemoScene: no scene named %s\n", name.c_str()));
        return false;
    }
    return it->second.render(fileName, width, height);
}

} // namespace corvane
