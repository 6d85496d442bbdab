#include <OpenSG/Timer.h>

#include <climits>
#include <cmath>

Timer::Timer(Timeable *listener)
    : _listener(listener), _tickDelay(-1.0), _lastTick(0.0), _active(false), _currentTime(-1.0)
{
}

bool Timer::sendTick(double age, int ticksLeft)
{
    return _listener != NULL && _listener->onTick(this, age, ticksLeft);
}

void Timer::restart(void)
{
    sendTick(0.0, 0);
    _lastTick = _currentTime;
}

void Timer::setActive(bool active)
{
    if(active == _active)
        return;

    _active = active;

    if(_active)
        restart();
}

void Timer::update(void)
{
    const double t = _currentTime;

    // A clock that is not a number never becomes due.
    if(!_active || !(t >= 0.0))
        return;

    if(t < _lastTick + _tickDelay)
        return;

    double age = t - _lastTick;
    double due;

    if(_tickDelay != 0.0)
        due = std::trunc(age / _tickDelay);
    else
        // Without a delay every update that finds the clock moved is one tick.
        due = age > 0.0 ? 1.0 : 0.0;

    if(!std::isfinite(due))
        return;

    // The count of waiting ticks is an int for the listener; a clock that
    // jumped further than that offers the most an int can say.
    const int n = due <= 0.0 ? 0 : (due > double(INT_MAX) ? INT_MAX : int(due));

    for(int k = n - 1; k >= 0; --k)
    {
        if(!sendTick(age, k))
            break;

        age -= _tickDelay;
    }

    // Ticks the listener refused are dropped, not kept for later.
    _lastTick += due * _tickDelay;
}
