#include <OpenSG/OSGLock.h>

#include <map>

OSG_BEGIN_NAMESPACE

namespace
{
std::mutex &registryMutex(void)
{
    static std::mutex *m = new std::mutex;
    return *m;
}
} // namespace

Lock *Lock::get(const Char8 *szName)
{
    static std::map<std::string, Lock *> *locks = new std::map<std::string, Lock *>;
    std::lock_guard<std::mutex> guard(registryMutex());
    std::string name(szName ? szName : "");
    Lock *&slot = (*locks)[name];
    if(slot == NULL)
        slot = new Lock(name.c_str());
    return slot;
}

LockPool *LockPool::get(const Char8 *szName)
{
    static std::map<std::string, LockPool *> *pools = new std::map<std::string, LockPool *>;
    std::lock_guard<std::mutex> guard(registryMutex());
    std::string name(szName ? szName : "");
    LockPool *&slot = (*pools)[name];
    if(slot == NULL)
        slot = new LockPool(name.c_str());
    return slot;
}

OSG_END_NAMESPACE
