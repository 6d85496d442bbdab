#ifndef _DROPLETTIMER_H_
#define _DROPLETTIMER_H_

class Timer;

/// Receiver of a Timer's ticks.
class Timeable
{
  public:
    virtual ~Timeable(void) {}

    /// age: seconds since the last counted tick; ticksLeft: how many more
    /// ticks wait after this one. True asks for the next waiting tick,
    /// false ends the run.
    virtual bool onTick(Timer *timer, double age, int ticksLeft) = 0;
};

/// Turns a clock value into ticks for a Timeable: the droplet simulation's
/// only notion of time.
///
/// The clock is whatever the owner sets with setCurrentTime (seconds); the
/// timer never reads a clock of its own. update() counts how many tick
/// delays have passed since the last counted tick and offers them to the
/// listener, oldest first; the listener takes as many as it wants, and the
/// ones it refuses are dropped, so a slow frame loses simulated time
/// instead of piling up work.
class Timer
{
  public:
    /// The listener is not owned. The timer starts inactive, with no clock
    /// (-1) and a tick delay of -1: set the delay before starting it.
    explicit Timer(Timeable *listener);

    /// The owner's clock in seconds; update counts ticks against it.
    /// @{
    void   setCurrentTime(double time) { _currentTime = time; }
    double getCurrentTime(void) const { return _currentTime; }
    /// @}

    /// Seconds between ticks.
    /// @{
    void   setTickDelay(double delay) { _tickDelay = delay; }
    double getTickDelay(void) const { return _tickDelay; }
    /// @}

    /// The clock value of the last counted tick.
    double getLastTick(void) const { return _lastTick; }
    /// Whether update offers ticks.
    bool   isActive(void) const { return _active; }

    /// Hands one tick to the listener and returns its answer.
    bool sendTick(double age, int ticksLeft);

    /// A tick of age 0, then counting starts again from the current time.
    void restart(void);

    /// Starting restarts; setting the state it already has does nothing.
    void setActive(bool active);

    /// Offers the ticks that are due at the current time.
    void update(void);

  private:
    Timeable *_listener;
    double    _tickDelay;
    double    _lastTick;
    bool      _active;
    double    _currentTime;
};

#endif
