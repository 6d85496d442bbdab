// Test entry point: the host core is initialised once for the whole run.
#include <OpenSG/OSGBaseInitFunctions.h>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if(!OSG::osgInit(argc, argv))
        return 2;
    int result = RUN_ALL_TESTS();
    OSG::osgExit();
    return result;
}
