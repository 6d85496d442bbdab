// What every OpenSG 1.8 program starts with: OSGBaseFunctions.h alone gives
// osgInit and osgExit (and the rest of the init and exit registry).
#include <OpenSG/OSGBaseFunctions.h>

#include <cstdio>

namespace
{
bool initRan = false;
bool exitRan = false;

bool onInit(void)
{
    initRan = true;
    return true;
}

bool onExit(void)
{
    exitRan = true;
    return true;
}
} // namespace

int main(int argc, char **argv)
{
    osg::addInitFunction(onInit);
    osg::addSystemExitFunction(onExit);

    if(!osg::osgInit(argc, argv) || osg::GlobalSystemState != osg::Running || !initRan)
    {
        std::fprintf(stderr, "osgInit failed\n");
        return 1;
    }
    if(!osg::osgExit() || osg::GlobalSystemState != osg::Shutdown || !exitRan)
    {
        std::fprintf(stderr, "osgExit failed\n");
        return 1;
    }
    std::printf("osgInit and osgExit through OSGBaseFunctions.h alone\n");
    return 0;
}
