// PrimitiveDrawer with real plug-in libraries built beside the tests: the
// "file" and "file#base" names, the context, drawing, the bounding box and
// the parameters reach the library; a missing library, a missing symbol and
// a null context give the warnings and no crash; the sample flower draws.
#include "PrimitivesTestSupport.h"
#include "plugins/ProbeState.h"
#include "window/WindowTestSupport.h"

#include <OpenSG/OSGPrimitiveDrawer.h>

#include <algorithm>
#include <cstdlib>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>
#include <support/ScratchDir.h>

using namespace osg;
using namespace wintest;

namespace
{

const std::string ProbeDir = CORVANE_PROBE_DIR;

const RGBA Backdrop = {0, 0, 64, 255};

class PrimitiveDrawerTest : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;
        port(0, 1, 0, 1, solid(Backdrop));
        lookFrom(Pnt3f(0, 0, 3), Pnt3f(0, 0, 0));
    }

    void TearDown(void) override
    {
        FrameFixture::TearDown();
        // the drawers are gone and have shut their probes down
        for(ProbeState *s : probes)
            std::free(s);
    }

    void lookFrom(const Pnt3f &from, const Pnt3f &at) { primtest::lookFrom(beacon, from, at); }

    /// A drawer on a node under root, loaded with libName and given the
    /// parameters in the same edit; the log of the edit goes to loadLog.
    PrimitiveDrawerPtr addDrawer(const std::string &libName,
                                 const std::vector<std::string> &params = {})
    {
        PrimitiveDrawerPtr drawer = PrimitiveDrawer::create();
        keep(drawer);
        loadLog = load(drawer, libName, params);

        drawerNode = Node::create();
        beginEditCP(drawerNode);
        drawerNode->setCore(drawer);
        endEditCP(drawerNode);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(drawerNode);
        endEditCP(root, Node::ChildrenFieldMask);
        return drawer;
    }

    /// Sets libName (when not NULL) and the parameters (when given) in one
    /// edit; what it logged.
    std::string load(const PrimitiveDrawerPtr &drawer, const std::string &libName,
                     const std::vector<std::string> &params = {}, bool setName = true)
    {
        BitVector mask = (setName ? PrimitiveDrawer::LibNameFieldMask : 0) |
                         (params.empty() ? 0 : PrimitiveDrawer::ParamDicFieldMask);
        LogCapture log(LOG_WARNING);
        beginEditCP(drawer, mask);
        if(setName)
            drawer->editLibName() = libName;
        if(!params.empty())
            drawer->editMFParamDic()->getValues().assign(params.begin(), params.end());
        endEditCP(drawer, mask);
        return log.take();
    }

    std::string setParams(const PrimitiveDrawerPtr &drawer, const std::vector<std::string> &params)
    {
        return load(drawer, "", params, false);
    }

    /// The context of a probe plug-in, freed after the test.
    ProbeState *probe(const PrimitiveDrawerPtr &drawer)
    {
        ProbeState *s = static_cast<ProbeState *>(drawer->getContext());
        if(s != NULL && std::find(probes.begin(), probes.end(), s) == probes.end())
            probes.push_back(s);
        return s;
    }

    RGBA pixel(UInt32 x, UInt32 y) { return readAll(win)[y * winW + x]; }
    RGBA centre(void) { return pixel(winW / 2, winH / 2); }

    /// The drawer's box, as the node's volume.
    void bounds(Pnt3f &lo, Pnt3f &hi)
    {
        drawerNode->invalidateVolume();
        drawerNode->getVolume(true).getBounds(lo, hi);
    }

    NodePtr                   drawerNode;
    std::string               loadLog;
    std::vector<ProbeState *> probes;
};

// --- loading -------------------------------------------------------------------------

TEST_F(PrimitiveDrawerTest, LoadsAPlugInAndDrawsWithIt)
{
    PrimitiveDrawerPtr drawer = addDrawer(ProbeDir + "/libprobe.so#probe", {"color", "0 1 0"});
    EXPECT_EQ(loadLog, "");
    EXPECT_TRUE(drawer->isLibraryOpen());
    EXPECT_EQ(drawer->getBaseName(), "probe");
    ProbeState *s = probe(drawer);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s->calls, "color=0 1 0;");

    frame();
    EXPECT_EQ(centre(), Green);
    EXPECT_EQ(pixel(1, 1), Backdrop);
    EXPECT_EQ(s->draws, 1);
    EXPECT_EQ(s->lastAction, static_cast<DrawActionBase *>(action.get()));
}

TEST_F(PrimitiveDrawerTest, BareNameOpensLibNameSoFromTheSearchPath)
{
    // "probe" itself is no file; libprobe.so is found on the search path
    PrimitiveDrawerPtr drawer = addDrawer("probe");
    EXPECT_EQ(loadLog, "");
    EXPECT_TRUE(drawer->isLibraryOpen());
    EXPECT_EQ(drawer->getBaseName(), "probe");
    EXPECT_NE(probe(drawer), nullptr);
}

TEST_F(PrimitiveDrawerTest, BaseAfterTheLastHashNamesTheSymbols)
{
    PrimitiveDrawerPtr drawer = addDrawer(ProbeDir + "/libprobe_spark.so#spark");
    EXPECT_EQ(loadLog, "");
    EXPECT_EQ(drawer->getBaseName(), "spark");
    EXPECT_NE(probe(drawer), nullptr);

    // a "#" in the file name: only the last one separates
    const std::string odd = corvanetest::scratchPath("corvane#probe.so");
    std::remove(odd.c_str());
    ASSERT_EQ(symlink((ProbeDir + "/libprobe_spark.so").c_str(), odd.c_str()), 0);
    EXPECT_EQ(load(drawer, odd + "#spark"), "");
    EXPECT_NE(probe(drawer), nullptr);
    EXPECT_EQ(drawer->getBaseName(), "spark");
    frame();
    EXPECT_EQ(centre(), (RGBA{255, 255, 255, 255}));
    std::remove(odd.c_str());
}

TEST_F(PrimitiveDrawerTest, ParametersGoToTheLibraryInPairs)
{
    PrimitiveDrawerPtr drawer =
        addDrawer(ProbeDir + "/libprobe.so#probe", {"a", "1", "reject", "x", "b", "2"});
    EXPECT_EQ(loadLog, "WARNING:  Could not set parameter reject to x\n");
    ProbeState *s = probe(drawer);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s->calls, "a=1;b=2;");

    // a name without a value is reported, not read past
    EXPECT_EQ(setParams(drawer, {"c", "3", "dangling"}),
              "WARNING:  Parameter dangling has no value\n");
    EXPECT_STREQ(s->calls, "a=1;b=2;c=3;");

    // a new library gets the old parameters only when they are set again
    EXPECT_EQ(load(drawer, ProbeDir + "/libprobe.so#probe"), "");
    ASSERT_NE(probe(drawer), s);
    EXPECT_STREQ(probe(drawer)->calls, "");
    EXPECT_EQ(s->shutdowns, 1);
}

TEST_F(PrimitiveDrawerTest, BoundingBoxComesFromThePlugIn)
{
    PrimitiveDrawerPtr drawer =
        addDrawer(ProbeDir + "/libprobe.so#probe", {"min", "-1 -2 -3", "max", "4 5 6"});
    ASSERT_NE(probe(drawer), nullptr);
    Pnt3f lo, hi;
    bounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(-1, -2, -3));
    EXPECT_EQ(hi, Pnt3f(4, 5, 6));
}

// --- shutting down -------------------------------------------------------------------

TEST_F(PrimitiveDrawerTest, ShutdownCallsThePlugInOnce)
{
    PrimitiveDrawerPtr drawer = addDrawer(ProbeDir + "/libprobe.so#probe");
    ProbeState        *s      = probe(drawer);
    ASSERT_NE(s, nullptr);
    drawer->shutdown();
    EXPECT_FALSE(drawer->isLibraryOpen());
    drawer->shutdown();
    EXPECT_EQ(s->shutdowns, 1);
}

TEST_F(PrimitiveDrawerTest, TheLastReferenceShutsThePlugInDown)
{
    PrimitiveDrawerPtr drawer = PrimitiveDrawer::create();
    addRefCP(drawer);
    load(drawer, ProbeDir + "/libprobe.so#probe");
    ProbeState *s = probe(drawer);
    ASSERT_NE(s, nullptr);
    subRefCP(drawer);
    EXPECT_EQ(s->shutdowns, 1);
}

// --- what goes wrong -------------------------------------------------------------------

TEST_F(PrimitiveDrawerTest, MissingLibraryWarnsAndDrawsNothing)
{
    PrimitiveDrawerPtr drawer = addDrawer("nosuchplugin", {"a", "1"});
    EXPECT_EQ(loadLog, "WARNING:  Could not open shared library nosuchplugin\n"
                       "WARNING:  Missing function pointer: setParam");
    EXPECT_FALSE(drawer->isLibraryOpen());
    EXPECT_EQ(drawer->getBaseName(), "nosuchplugin");

    // every pass warns (with culling off: the volume is empty)
    action->setFrustumCulling(false);
    for(int pass = 0; pass < 2; ++pass)
    {
        const std::string log = frameLog();
        EXPECT_NE(log.find("Missing function pointer: drawPrim\n"), std::string::npos) << log;
        EXPECT_EQ(centre(), Backdrop);
    }
    LogCapture log(LOG_WARNING);
    drawerNode->invalidateVolume();
    EXPECT_TRUE(drawerNode->getVolume(true).isEmpty());
    EXPECT_EQ(log.take(), "WARNING:  Missing function pointer: getBBox\n");

    // an empty name opens the program itself, which has none of the symbols
    EXPECT_EQ(load(drawer, ""), "WARNING:  Could not load correct symbols from library \n");
}

TEST_F(PrimitiveDrawerTest, LibraryWithoutASymbolServesTheOthers)
{
    const std::string  file   = ProbeDir + "/libprobe_nobbox.so";
    PrimitiveDrawerPtr drawer = addDrawer(file + "#probe", {"color", "1 0 0"});
    EXPECT_EQ(loadLog, "WARNING:  Could not load correct symbols from library " + file + "\n");
    EXPECT_STREQ(probe(drawer)->calls, "color=1 0 0;");

    // without a box the node would be culled
    action->setFrustumCulling(false);
    frame();
    EXPECT_EQ(centre(), Red);
    LogCapture log(LOG_WARNING);
    drawerNode->invalidateVolume();
    drawerNode->getVolume(true);
    EXPECT_EQ(log.take(), "WARNING:  Missing function pointer: getBBox\n");
}

TEST_F(PrimitiveDrawerTest, NullContextStillReachesTheLibrary)
{
    // one library has no _initialize, the other's returns NULL: the calls
    // get a null context either way
    for(const char *name : {"/libprobe_noinit.so#probe", "/libprobe_nullctx.so#probe"})
    {
        PrimitiveDrawerPtr drawer = addDrawer(ProbeDir + name, {"color", "0 0 1"});
        EXPECT_EQ(loadLog, "") << name;
        EXPECT_TRUE(drawer->isLibraryOpen());
        EXPECT_EQ(drawer->getContext(), nullptr);
        frame();
        EXPECT_EQ(centre(), Blue) << name;
        Pnt3f lo, hi;
        bounds(lo, hi);
        EXPECT_EQ(hi, Pnt3f(0.5f, 0.5f, 0)) << name;
        beginEditCP(root, Node::ChildrenFieldMask);
        root->subChild(drawerNode);
        endEditCP(root, Node::ChildrenFieldMask);
    }
}

TEST_F(PrimitiveDrawerTest, FailedReloadLeavesNothingToCall)
{
    PrimitiveDrawerPtr drawer = addDrawer(ProbeDir + "/libprobe.so#probe");
    ProbeState        *s      = probe(drawer);
    ASSERT_NE(s, nullptr);
    frame();

    // the old library is shut down and closed; its entry points are not
    // called any more
    EXPECT_EQ(load(drawer, "gone#probe"), "WARNING:  Could not open shared library gone#probe\n");
    EXPECT_EQ(s->shutdowns, 1);
    EXPECT_FALSE(drawer->isLibraryOpen());
    const std::string log = frameLog();
    EXPECT_NE(log.find("Missing function pointer: drawPrim\n"), std::string::npos) << log;
    EXPECT_EQ(centre(), Backdrop);
    EXPECT_EQ(s->draws, 1);
}

// --- the sample plug-in ----------------------------------------------------------------

TEST_F(PrimitiveDrawerTest, SampleFlowerDrawsItsHeadAndTakesItsParameters)
{
    PrimitiveDrawerPtr drawer = addDrawer(std::string(CORVANE_FLOWER_PLUGIN) + "#flower",
                                          {"petalColor", "1 0 0", "centerColor", "0 0 1",
                                           "petals", "5", "stemHeight", "1.5"});
    EXPECT_EQ(loadLog, "");
    Pnt3f lo, hi;
    bounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(-1, 0, 0));
    EXPECT_EQ(hi, Pnt3f(1, 2.5f, 0.04f));

    // the head's centre in front of the camera, a petal straight above it
    lookFrom(Pnt3f(0, 1.5f, 3), Pnt3f(0, 1.5f, 0));
    frame();
    const RGBA heart = centre(), petal = pixel(winW / 2, winH / 2 + 7);
    EXPECT_GT(heart.b, heart.r + 100) << heart;
    EXPECT_GT(petal.r, 150) << petal;
    EXPECT_LT(petal.b, 60) << petal;

    EXPECT_EQ(setParams(drawer, {"petals", "2", "radius", "wide", "colour", "1 1 1"}),
              "WARNING:  Could not set parameter petals to 2\n"
              "WARNING:  Could not set parameter radius to wide\n"
              "WARNING:  Could not set parameter colour to 1 1 1\n");
}

} // namespace
