// Timer: ticks from a clock the test sets by hand, never from sleeps.
// At most one step per update for a listener that takes one tick (as the
// droplet simulation does), every waiting tick oldest first for one that
// takes them all, the delay spacing the ticks, restarts and pauses.
#include <OpenSG/Timer.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace
{

struct Tick
{
    double age;
    int    ticksLeft;
};

/// Records its ticks and answers `more`.
struct Recorder : Timeable
{
    explicit Recorder(bool more) : more(more) {}

    bool onTick(Timer *, double age, int ticksLeft) override
    {
        ticks.push_back(Tick{age, ticksLeft});
        return more;
    }

    bool              more;
    std::vector<Tick> ticks;
};

/// A running timer with delay 0.25 whose counting starts at clock 10.
/// (Clocks and delays of the tests are exact binary fractions, so that the
/// count of due ticks doesn't hinge on rounding.)
Timer startedAt10(Recorder &listener)
{
    Timer timer(&listener);
    timer.setTickDelay(0.25);
    timer.setCurrentTime(10.0);
    timer.setActive(true);
    listener.ticks.clear();
    return timer;
}

} // namespace

TEST(Timer, StartsInactiveWithoutClockAndSendsNothing)
{
    Recorder listener(true);
    Timer    timer(&listener);

    EXPECT_FALSE(timer.isActive());
    EXPECT_EQ(timer.getCurrentTime(), -1.0);
    EXPECT_EQ(timer.getTickDelay(), -1.0);
    EXPECT_EQ(timer.getLastTick(), 0.0);

    timer.setCurrentTime(5.0);
    timer.update();
    EXPECT_TRUE(listener.ticks.empty());
}

TEST(Timer, StartingSendsOneTickOfAgeZeroAndCountsFromNow)
{
    Recorder listener(false);
    Timer    timer(&listener);
    timer.setTickDelay(0.1);
    timer.setCurrentTime(10.0);

    timer.setActive(true);
    ASSERT_EQ(listener.ticks.size(), 1u);
    EXPECT_EQ(listener.ticks[0].age, 0.0);
    EXPECT_EQ(listener.ticks[0].ticksLeft, 0);
    EXPECT_EQ(timer.getLastTick(), 10.0);

    // a second start changes nothing
    timer.setActive(true);
    EXPECT_EQ(listener.ticks.size(), 1u);
}

TEST(Timer, TheDelaySpacesTheTicks)
{
    Recorder listener(true);
    Timer    timer = startedAt10(listener);

    timer.setCurrentTime(10.125);
    timer.update();
    EXPECT_TRUE(listener.ticks.empty());

    timer.setCurrentTime(10.25);
    timer.update();
    ASSERT_EQ(listener.ticks.size(), 1u);
    EXPECT_EQ(listener.ticks[0].age, 0.25);
    EXPECT_EQ(timer.getLastTick(), 10.25);

    // the same clock again: nothing new is due
    timer.update();
    EXPECT_EQ(listener.ticks.size(), 1u);
}

TEST(Timer, AListenerThatTakesAllGetsEveryWaitingTickOldestFirst)
{
    Recorder listener(true);
    Timer    timer = startedAt10(listener);

    timer.setCurrentTime(10.875);
    timer.update();

    ASSERT_EQ(listener.ticks.size(), 3u);
    const double ages[3] = {0.875, 0.625, 0.375};
    for(int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(listener.ticks[i].age, ages[i]) << i;
        EXPECT_EQ(listener.ticks[i].ticksLeft, 2 - i) << i;
    }
    // the remainder of 0.125 still counts towards the next tick
    EXPECT_EQ(timer.getLastTick(), 10.75);
}

TEST(Timer, AtMostOneStepPerUpdateHoweverFarTheClockMoved)
{
    // the simulation takes one tick and refuses the rest, which are dropped
    Recorder listener(false);
    Timer    timer = startedAt10(listener);

    timer.setCurrentTime(15.0);
    timer.update();
    ASSERT_EQ(listener.ticks.size(), 1u);
    EXPECT_EQ(listener.ticks[0].ticksLeft, 19);
    EXPECT_EQ(timer.getLastTick(), 15.0);

    timer.update();
    EXPECT_EQ(listener.ticks.size(), 1u);

    timer.setCurrentTime(15.25);
    timer.update();
    EXPECT_EQ(listener.ticks.size(), 2u);
}

TEST(Timer, PausedTimersSendNothingAndResumeWithATickOfAgeZero)
{
    Recorder listener(true);
    Timer    timer = startedAt10(listener);

    timer.setActive(false);
    timer.setCurrentTime(11.0);
    timer.update();
    EXPECT_TRUE(listener.ticks.empty());

    // the paused second does not count as elapsed time
    timer.setActive(true);
    ASSERT_EQ(listener.ticks.size(), 1u);
    EXPECT_EQ(listener.ticks[0].age, 0.0);
    EXPECT_EQ(timer.getLastTick(), 11.0);
    timer.update();
    EXPECT_EQ(listener.ticks.size(), 1u);
}

TEST(Timer, AClockSetBackwardsWaitsUntilItPassesTheLastTickAgain)
{
    Recorder listener(true);
    Timer    timer = startedAt10(listener);

    timer.setCurrentTime(4.0);
    timer.update();
    timer.setCurrentTime(10.125);
    timer.update();
    EXPECT_TRUE(listener.ticks.empty());

    timer.setCurrentTime(10.25);
    timer.update();
    EXPECT_EQ(listener.ticks.size(), 1u);
}

TEST(Timer, RestartSendsATickAndCountsFromTheCurrentClock)
{
    Recorder listener(true);
    Timer    timer = startedAt10(listener);

    timer.setCurrentTime(10.875);
    timer.restart();
    ASSERT_EQ(listener.ticks.size(), 1u);
    EXPECT_EQ(listener.ticks[0].age, 0.0);
    EXPECT_EQ(timer.getLastTick(), 10.875);
}

TEST(Timer, OddDelaysAndClocksNeitherHangNorOverflow)
{
    Recorder listener(false);

    // no delay set: no tick is ever counted, as with any negative delay
    Timer unset(&listener);
    unset.setCurrentTime(0.0);
    unset.setActive(true);
    listener.ticks.clear();
    unset.setCurrentTime(1e12);
    unset.update();
    EXPECT_TRUE(listener.ticks.empty());

    // a zero delay gives one tick per update that finds the clock moved
    Timer zero(&listener);
    zero.setTickDelay(0.0);
    zero.setCurrentTime(1.0);
    zero.setActive(true);
    listener.ticks.clear();
    zero.update();
    EXPECT_TRUE(listener.ticks.empty());
    zero.setCurrentTime(2.0);
    zero.update();
    zero.update();
    EXPECT_EQ(listener.ticks.size(), 2u);

    // a tiny delay and a huge jump offer at most INT_MAX ticks
    listener.ticks.clear();
    Timer tiny(&listener);
    tiny.setTickDelay(1e-12);
    tiny.setCurrentTime(0.0);
    tiny.setActive(true);
    tiny.setCurrentTime(1e6);
    tiny.update();
    ASSERT_EQ(listener.ticks.size(), 2u);
    EXPECT_EQ(listener.ticks[1].ticksLeft, 2147483646);

    // a clock that is not a number is never due
    listener.ticks.clear();
    Timer nan(&listener);
    nan.setTickDelay(0.1);
    nan.setCurrentTime(0.0);
    nan.setActive(true);
    nan.setCurrentTime(std::numeric_limits<double>::quiet_NaN());
    nan.update();
    EXPECT_EQ(listener.ticks.size(), 1u);
}
