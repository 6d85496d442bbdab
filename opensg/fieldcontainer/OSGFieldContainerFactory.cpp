#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGLock.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <mutex>

OSG_BEGIN_NAMESPACE

bool initializeFieldContainerPtr(void);
bool terminateFieldContainerPtr(void);

namespace
{
/// Holds a Lock for a scope when the lock exists (it does after osgInit).
class LockGuard
{
  public:
    explicit LockGuard(Lock *lock) : _lock(lock)
    {
        if(_lock != NULL)
            _lock->aquire();
    }
    ~LockGuard(void)
    {
        if(_lock != NULL)
            _lock->release();
    }

  private:
    Lock *_lock;
};
} // namespace

FieldContainerFactory::FieldContainerFactory(void) :
    _pStoreLock(NULL), _pMapLock(NULL), _pMapper(NULL), _bInitialized(false), _bInitializing(false)
{
    addInitFunction(&initializeFieldContainerPtr);
    addInitFunction(&FieldContainerFactory::initializeFactory);
    addSystemExitFunction(&terminateFieldContainerPtr);
    addSystemExitFunction(&FieldContainerFactory::terminateFactory);
}

FieldContainerFactory *FieldContainerFactory::the(void)
{
    // made by the first type's static initialiser; never destroyed, since
    // types of other libraries may still unregister at unload
    static FieldContainerFactory *factory = new FieldContainerFactory;
    return factory;
}

bool FieldContainerFactory::initializeFactory(void)
{
    FieldContainerFactory *f = the();
    f->_pStoreLock = ThreadManager::the()->getLock("OSGFieldContainerFactory::_pStoreLock");
    f->_pMapLock   = ThreadManager::the()->getLock("OSGFieldContainerFactory::_pMapLock");
    f->_bInitialized = true;
    ThreadManager::initialize();
    bool ok = f->initializePendingTypes();
    Thread::getCurrentChangeList()->clearAll();
    return ok;
}

bool FieldContainerFactory::terminateFactory(void)
{
    FieldContainerFactory *f = the();
    for(TypeIdMap::iterator it = f->_typeIdMap.begin(); it != f->_typeIdMap.end(); ++it)
        it->second->terminate();
    f->_bInitialized = false;
    return true;
}

void FieldContainerFactory::registerPlugin(void)
{
    if(GlobalSystemState == Running)
        the()->initializePendingTypes();
}

bool FieldContainerFactory::initializePendingTypes(void)
{
    if(!_bInitialized || _bInitializing)
        return true;

    LockGuard guard(_pMapLock);
    _bInitializing = true;
    bool ok        = true;
    // a type leaves the pending list once initialised; parents are found
    // there and initialised first
    UninitializedTypeStore pending = _unitTypes;
    for(size_t i = 0; i < pending.size(); ++i)
    {
        FieldContainerType *type = pending[i];
        if(!type->isInitialized() && !type->initialize())
            ok = false;
    }
    _bInitializing = false;
    return ok;
}

void FieldContainerFactory::lazyInitialize(void) const
{
    if(!_unitTypes.empty() && GlobalSystemState == Running)
        const_cast<FieldContainerFactory *>(this)->initializePendingTypes();
}

void FieldContainerFactory::registerType(FieldContainerType *pType)
{
    if(pType->isInitialized())
    {
        _typeIdMap[pType->getId()]        = pType;
        _typeNameMap[pType->getCName()]   = pType;
        UninitializedTypeStore::iterator it = std::find(_unitTypes.begin(), _unitTypes.end(), pType);
        if(it != _unitTypes.end())
            _unitTypes.erase(it);
    }
    else if(std::find(_unitTypes.begin(), _unitTypes.end(), pType) == _unitTypes.end())
    {
        _unitTypes.push_back(pType);
    }
}

void FieldContainerFactory::unregisterType(FieldContainerType *pType)
{
    TypeIdMap::iterator it = _typeIdMap.find(pType->getId());
    if(it != _typeIdMap.end() && it->second == pType)
        _typeIdMap.erase(it);
    TypeNameMap::iterator nit = _typeNameMap.find(pType->getCName() ? pType->getCName() : "");
    if(nit != _typeNameMap.end() && nit->second == pType)
        _typeNameMap.erase(nit);
    UninitializedTypeStore::iterator uit = std::find(_unitTypes.begin(), _unitTypes.end(), pType);
    if(uit != _unitTypes.end())
        _unitTypes.erase(uit);
}

UInt16 FieldContainerFactory::registerGroup(const Char8 *szName)
{
    if(szName == NULL)
        return 0;
    GroupMap::iterator it = _groupMap.find(szName);
    if(it != _groupMap.end())
        return it->second;
    UInt16 id          = UInt16(_groupMap.size() + 1);
    _groupMap[szName] = id;
    return id;
}

FieldContainerType *FieldContainerFactory::findType(UInt32 uiTypeId) const
{
    lazyInitialize();
    TypeIdMap::const_iterator it = _typeIdMap.find(uiTypeId);
    return it != _typeIdMap.end() ? it->second : NULL;
}

FieldContainerType *FieldContainerFactory::findType(const Char8 *szName) const
{
    if(szName == NULL)
        return NULL;
    lazyInitialize();
    TypeNameMap::const_iterator it = _typeNameMap.find(szName);
    return it != _typeNameMap.end() ? it->second : NULL;
}

FieldContainerType *FieldContainerFactory::findUninitializedType(const Char8 *szName) const
{
    if(szName == NULL)
        return NULL;
    for(size_t i = 0; i < _unitTypes.size(); ++i)
        if(_unitTypes[i]->getName() == IDString(szName))
            return _unitTypes[i];
    return NULL;
}

UInt16 FieldContainerFactory::findGroupId(const Char8 *szName) const
{
    if(szName == NULL)
        return 0;
    GroupMap::const_iterator it = _groupMap.find(szName);
    return it != _groupMap.end() ? it->second : 0;
}

const Char8 *FieldContainerFactory::findGroupName(UInt16 uiGroupId) const
{
    for(GroupMap::const_iterator it = _groupMap.begin(); it != _groupMap.end(); ++it)
        if(it->second == uiGroupId)
            return it->first.c_str();
    return NULL;
}

UInt32 FieldContainerFactory::registerFieldContainer(const FieldContainerPtr &pFieldContainer)
{
    LockGuard guard(_pStoreLock);
    if(_fieldContainerStore.empty())
        _fieldContainerStore.push_back(NullFC);
    _fieldContainerStore.push_back(pFieldContainer);
    return UInt32(_fieldContainerStore.size() - 1);
}

bool FieldContainerFactory::unregisterFieldContainer(const FieldContainerPtr &pFieldContainer)
{
    LockGuard guard(_pStoreLock);
    UInt32 id = pFieldContainer.getFieldContainerId();
    if(id < _fieldContainerStore.size())
        _fieldContainerStore[id] = NullFC;
    return false;
}

FieldContainerPtr FieldContainerFactory::getContainer(UInt32 uiContainerId) const
{
    LockGuard guard(_pStoreLock);
    return uiContainerId < _fieldContainerStore.size() ? _fieldContainerStore[uiContainerId]
                                                       : FieldContainerPtr();
}

FieldContainerPtr FieldContainerFactory::getMappedContainer(UInt32 uiContainerId) const
{
    if(_pMapper != NULL)
        return getContainer(_pMapper->map(uiContainerId));
    return getContainer(uiContainerId);
}

FieldContainerPtr FieldContainerFactory::createFieldContainer(const Char8 *szName) const
{
    FieldContainerType *type = findType(szName);
    return type != NULL ? type->createFieldContainer() : FieldContainerPtr();
}

NodePtr FieldContainerFactory::createNode(const Char8 *szName) const
{
    FieldContainerType *type = findType(szName);
    return type != NULL ? type->createNode() : NodePtr();
}

NodeCorePtr FieldContainerFactory::createNodeCore(const Char8 *szName) const
{
    FieldContainerType *type = findType(szName);
    return type != NULL ? type->createNodeCore() : NodeCorePtr();
}

AttachmentPtr FieldContainerFactory::createAttachment(const Char8 *szName) const
{
    FieldContainerType *type = findType(szName);
    return type != NULL ? type->createAttachment() : AttachmentPtr();
}

OSG_END_NAMESPACE
