// Statistics: descriptors, collectors creating elements on demand, elements.
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGStatCollector.h>

#include <gtest/gtest.h>

using namespace osg;

namespace
{

StatElemDesc<StatIntElem>     testCount("testActionCount", "a count for the tests");
StatElemDesc<StatIntOnceElem> testOnce("testActionOnce", "a once-per-contributor count");
StatElemDesc<StatRealElem>    testReal("testActionReal", "a real for the tests");

} // namespace

TEST(Statistics, DescriptorsAreFoundByNameAndId)
{
    EXPECT_GE(testCount.getID(), 0);
    EXPECT_EQ(&testCount, StatElemDescBase::getDesc(testCount.getID()));
    EXPECT_EQ(&testCount, StatElemDescBase::findDescByName("testActionCount"));
    EXPECT_EQ(&RenderAction::statNLights, StatElemDescBase::findDescByName("NLights"));
    EXPECT_EQ(NULL, StatElemDescBase::findDescByName("noSuchStatistic"));
    EXPECT_FALSE(StatElemDescBase::isValidID(-1));
    EXPECT_EQ("a count for the tests", testCount.getDescription());

    LogCapture log(LOG_FATAL);
    StatElemDesc<StatIntElem> twice("testActionCount", "again");
    EXPECT_EQ(-1, twice.getID());
    EXPECT_NE(std::string::npos,
              log.take().find("Try to register the StatElemDescBase name testActionCount a second time"));
}

TEST(Statistics, CollectorCreatesElementsOnlyWhenAsked)
{
    StatCollector *sc = StatCollector::create();

    EXPECT_EQ(NULL, sc->getElem(testCount, false));
    StatIntElem *e = sc->getElem(testCount);
    ASSERT_NE(nullptr, e);
    EXPECT_EQ(e, sc->getElem(testCount, false));
    EXPECT_EQ(0, e->get());

    e->add(5);
    e->inc();
    e->sub(2);
    EXPECT_EQ(4, e->get());
    EXPECT_EQ(4.0, e->getValue());

    StatRealElem *r = sc->getElem(testReal);
    r->set(1.5f);

    // copies are deep; reset zeroes the elements but keeps them
    StatCollector copy(*sc);
    sc->reset();
    EXPECT_EQ(0, sc->getElem(testCount, false)->get());
    EXPECT_EQ(4, copy.getElem(testCount, false)->get());
    EXPECT_EQ(1.5f, copy.getElem(testReal, false)->get());

    copy += copy;
    EXPECT_EQ(8, copy.getElem(testCount, false)->get());

    std::string text;
    copy.putToString(text);
    EXPECT_NE(std::string::npos, text.find("testActionCount=8"));

    delete sc;
}

TEST(Statistics, OnceElementCountsEachContributorOnce)
{
    StatCollector    sc;
    StatIntOnceElem *e = sc.getElem(testOnce);
    e->add(7, 100);
    e->add(7, 100);
    e->add(8, 10);
    EXPECT_EQ(110, e->get());
    e->reset();
    e->add(7, 100);
    EXPECT_EQ(100, e->get());
}

TEST(Statistics, TimeSurvivesAResetBetweenStartAndStop)
{
    StatCollector sc;
    StatTimeElem *t = sc.getElem(DrawActionBase::statTravTime);
    t->start();
    sc.reset();
    t->stop();
    EXPECT_GE(t->getTime(), 0.0);
    EXPECT_LT(t->getTime(), 10.0);
}

TEST(Statistics, ActionOwnsACollectorOnlyWhenGivenNone)
{
    std::unique_ptr<RenderAction> ra(RenderAction::create());
    EXPECT_FALSE(ra->hasOwnStat());
    StatCollector *own = ra->getStatistics();
    ASSERT_NE(nullptr, own);
    EXPECT_TRUE(ra->hasOwnStat());

    StatCollector mine;
    ra->setStatistics(&mine); // deletes the own one
    EXPECT_FALSE(ra->hasOwnStat());
    EXPECT_EQ(&mine, ra->getStatistics());
    ra->setStatistics(NULL);
}
