// The main of the benchmark programs that need the scene graph: OpenSG is
// initialised around the runs and its log is silenced, since the classes log
// each load and only the figures matter here. A benchmark with a main of its
// own keeps it: this one lives in a static library and is only linked in
// where nothing else defines main.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGLog.h>

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    osg::osgInit(argc, argv);
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    osg::osgExit();
    return 0;
}
