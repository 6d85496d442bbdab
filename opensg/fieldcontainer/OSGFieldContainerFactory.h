/// The store of all containers (index = container id) and the type registry.
#ifndef _OSGFIELDCONTAINERFACTORY_H_
#define _OSGFIELDCONTAINERFACTORY_H_

#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldContainerType.h>

#include <map>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class Lock;

/// Translates container ids of a remote source into local ids.
struct FieldContainerMapper
{
    virtual ~FieldContainerMapper(void) {}
    virtual UInt32 map(UInt32 uiId) = 0;
};

class FieldContainerFactory
{
  public:
    typedef std::map<UInt32, FieldContainerType *>      TypeIdMap;
    typedef std::map<std::string, FieldContainerType *> TypeNameMap;
    typedef std::map<std::string, UInt16>               GroupMap;
    typedef std::vector<FieldContainerType *>           UninitializedTypeStore;
    typedef std::vector<FieldContainerPtr>              FieldContainerStore;
    typedef TypeIdMap::iterator                         TypeMapIterator;

    static FieldContainerFactory *the(void);

    FieldContainerType *findType(UInt32 uiTypeId) const;
    FieldContainerType *findType(const Char8 *szName) const;
    FieldContainerType *findUninitializedType(const Char8 *szName) const;
    UInt32 getNumTypes(void) const { return UInt32(_typeIdMap.size()); }
    TypeMapIterator beginTypes(void) { return _typeIdMap.begin(); }
    TypeMapIterator endTypes(void) { return _typeIdMap.end(); }

    UInt16 findGroupId(const Char8 *szName) const;
    const Char8 *findGroupName(UInt16 uiGroupId) const;
    UInt16 getNumGroups(void) const { return UInt16(_groupMap.size()); }

    /// Initialises every registered type that is not yet initialised.
    bool initializePendingTypes(void);

    FieldContainerPtr getContainer(UInt32 uiContainerId) const;
    FieldContainerPtr getMappedContainer(UInt32 uiContainerId) const;
    void setMapper(FieldContainerMapper *pMapper) { _pMapper = pMapper; }
    const FieldContainerStore *getFieldContainerStore(void) const { return &_fieldContainerStore; }

    FieldContainerPtr createFieldContainer(const Char8 *szName) const;
    NodePtr createNode(const Char8 *szName) const;
    NodeCorePtr createNodeCore(const Char8 *szName) const;
    AttachmentPtr createAttachment(const Char8 *szName) const;

    static void registerPlugin(void);

  protected:
    UInt32 registerFieldContainer(const FieldContainerPtr &pFieldContainer);
    bool unregisterFieldContainer(const FieldContainerPtr &pFieldContainer);

    void registerType(FieldContainerType *pType);
    void unregisterType(FieldContainerType *pType);
    UInt16 registerGroup(const Char8 *szName);

    static bool initializeFactory(void);
    static bool terminateFactory(void);

    friend class FieldContainer;
    friend class FieldContainerPtrBase;
    friend class FieldContainerType;

  private:
    FieldContainerFactory(void);

    void lazyInitialize(void) const;

    TypeIdMap              _typeIdMap;
    TypeNameMap            _typeNameMap;
    GroupMap               _groupMap;
    UninitializedTypeStore _unitTypes;
    FieldContainerStore    _fieldContainerStore;
    Lock                  *_pStoreLock;
    Lock                  *_pMapLock;
    FieldContainerMapper  *_pMapper;
    bool                   _bInitialized;
    bool                   _bInitializing;
};

OSG_END_NAMESPACE

#endif
