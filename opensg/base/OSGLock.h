/// Named locks and lock pools (keys hash to one of a fixed set of locks).
#ifndef _OSGLOCK_H_
#define _OSGLOCK_H_

#include <OpenSG/OSGBaseTypes.h>

#include <mutex>
#include <string>

OSG_BEGIN_NAMESPACE

class Lock
{
  public:
    /// Creates or looks up the lock of that name; it lives until osgExit.
    static Lock *get(const Char8 *szName);

    void aquire(void) { _mutex.lock(); }
    void release(void) { _mutex.unlock(); }
    bool request(void) { return _mutex.try_lock(); }

    void addRefP(void) {}
    void subRefP(void) {}

    const std::string &getName(void) const { return _name; }

    explicit Lock(const Char8 *szName) : _name(szName ? szName : "") {}

  private:
    std::recursive_mutex _mutex;
    std::string          _name;
};

class LockPool
{
  public:
    enum { NumberOfLocks = 32 };

    static LockPool *get(const Char8 *szName);

    void aquire(const void *keyP) { _locks[hash(keyP)].lock(); }
    void release(const void *keyP) { _locks[hash(keyP)].unlock(); }
    bool request(const void *keyP) { return _locks[hash(keyP)].try_lock(); }

    void addRefP(void) {}
    void subRefP(void) {}

    explicit LockPool(const Char8 *szName) : _name(szName ? szName : "") {}

  private:
    static UInt32 hash(const void *keyP)
    {
        return UInt32((reinterpret_cast<size_t>(keyP) >> 4) & (NumberOfLocks - 1));
    }

    std::recursive_mutex _locks[NumberOfLocks];
    std::string          _name;
};

OSG_END_NAMESPACE

#endif
