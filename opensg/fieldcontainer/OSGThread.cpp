#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGLog.h>


OSG_BEGIN_NAMESPACE

thread_local UInt32 osgThreadAspect = 0;

UInt32 ThreadManager::_numAspects = OSG_NUM_ASPECTS;

namespace
{
// Never freed: containers released during static destruction still record
// into it, after thread-local objects would already be gone.
thread_local ChangeList *currentChangeList = NULL;
}

ChangeList *Thread::getCurrentChangeList(void)
{
    if(currentChangeList == NULL)
    {
        currentChangeList = new ChangeList;
        currentChangeList->setAspect(osgThreadAspect);
    }
    return currentChangeList;
}

void Thread::setCurrentAspect(UInt32 aspect)
{
    if(aspect >= ThreadManager::getNumAspects())
    {
        SWARNING << "Thread::setCurrentAspect: invalid aspect " << aspect << std::endl;
        return;
    }
    osgThreadAspect = aspect;
    getCurrentChangeList()->setAspect(aspect);
}

ThreadManager *ThreadManager::the(void)
{
    static ThreadManager *manager = new ThreadManager;
    return manager;
}

bool ThreadManager::setNumAspects(UInt32 numAspects)
{
    const FieldContainerFactory::FieldContainerStore *store =
        FieldContainerFactory::the()->getFieldContainerStore();
    if(store->size() > 1 || numAspects == 0)
    {
        SFATAL << "ThreadManager::setNumAspects: can't change the number of aspects "
               << "once containers exist" << std::endl;
        return false;
    }
    _numAspects = numAspects;
    return true;
}

Lock *ThreadManager::getLock(const Char8 *szName, bool)
{
    return Lock::get(szName);
}

LockPool *ThreadManager::getLockPool(const Char8 *szName, bool)
{
    return LockPool::get(szName);
}

bool ThreadManager::initialize(void)
{
    Thread::getCurrentChangeList();
    return true;
}

bool ThreadManager::terminate(void)
{
    return true;
}

OSG_END_NAMESPACE
