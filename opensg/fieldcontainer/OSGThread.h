/// The calling thread's aspect and change list, and the aspect count.
#ifndef _OSGTHREAD_H_
#define _OSGTHREAD_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGLock.h>

OSG_BEGIN_NAMESPACE

class ChangeList;

extern thread_local UInt32 osgThreadAspect;

class Thread
{
  public:
    /// The aspect whose copies the calling thread reads and writes.
    static UInt32 getAspect(void) { return osgThreadAspect; }

    /// The calling thread's change list, made on first use.
    static ChangeList *getCurrentChangeList(void);

    /// Makes the calling thread work on another aspect (threads that
    /// render from a synchronised copy of the scene).
    static void setCurrentAspect(UInt32 aspect);
};

class ThreadManager
{
  public:
    static ThreadManager *the(void);

    static UInt32 getNumAspects(void) { return _numAspects; }

    /// Sets the number of aspects; only before the first container exists.
    static bool setNumAspects(UInt32 numAspects);

    Lock *getLock(const Char8 *szName, bool bGlobal = false);
    LockPool *getLockPool(const Char8 *szName, bool bGlobal = false);

    static bool initialize(void);
    static bool terminate(void);

  private:
    static UInt32 _numAspects;
};

OSG_END_NAMESPACE

#endif
