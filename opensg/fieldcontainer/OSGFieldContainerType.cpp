#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>

OSG_BEGIN_NAMESPACE

FieldContainerType::FieldContainerType(const Char8 *szName, const Char8 *szParentName,
                                       const Char8 *szGroupName,
                                       PrototypeCreateF fPrototypeCreate,
                                       InitContainerF fInitMethod, FieldDescription **pDesc,
                                       UInt32 uiDescByteCounter, bool bDescsAddable) :
    DataType(szName, szParentName),
    _uiGroupId(0),
    _bInitialized(false),
    _bDescsAddable(bDescsAddable),
    _baseType(IsFieldContainer),
    _pParent(NULL),
    _szGroupName(szGroupName != NULL ? szGroupName : szName),
    _pPrototype(),
    _fPrototypeCreate(fPrototypeCreate),
    _fInitMethod(fInitMethod),
    _pDesc(pDesc),
    _uiDescByteCounter(uiDescByteCounter),
    _mDescMap(),
    _vDescVec()
{
    FieldContainerFactory::the()->registerType(this);
    _uiGroupId = FieldContainerFactory::the()->registerGroup(_szGroupName.str());
}

FieldContainerType::~FieldContainerType(void)
{
    if(GlobalSystemState != Shutdown)
    {
        terminate();
        FieldContainerFactory::the()->unregisterType(this);
    }
}

FieldContainerPtr FieldContainerType::getPrototype(void) const
{
    // a library loaded after osgInit has its types initialised on first use
    if(!_bInitialized && GlobalSystemState == Running)
        FieldContainerFactory::the()->initializePendingTypes();
    return _pPrototype;
}

bool FieldContainerType::setPrototype(FieldContainerPtr pPrototype)
{
    if(pPrototype == NullFC)
        return false;
    setRefdCP(_pPrototype, pPrototype);
    return true;
}

bool FieldContainerType::isAbstract(void) const
{
    return getPrototype() == NullFC;
}

bool FieldContainerType::isDerivedFrom(const FieldContainerType &other) const
{
    for(const FieldContainerType *t = this; t != NULL; t = t->_pParent)
        if(t->getId() == other.getId())
            return true;
    return false;
}

FieldDescription *FieldContainerType::getFieldDescription(UInt32 uiFieldId)
{
    return uiFieldId >= 1 && uiFieldId - 1 < _vDescVec.size() ? _vDescVec[uiFieldId - 1] : NULL;
}

const FieldDescription *FieldContainerType::getFieldDescription(UInt32 uiFieldId) const
{
    return uiFieldId >= 1 && uiFieldId - 1 < _vDescVec.size() ? _vDescVec[uiFieldId - 1] : NULL;
}

FieldDescription *FieldContainerType::findFieldDescription(const Char8 *szFieldName)
{
    if(szFieldName == NULL)
        return NULL;
    DescMap::iterator it = _mDescMap.find(szFieldName);
    return it != _mDescMap.end() ? it->second : NULL;
}

const FieldDescription *FieldContainerType::findFieldDescription(const Char8 *szFieldName) const
{
    return const_cast<FieldContainerType *>(this)->findFieldDescription(szFieldName);
}

UInt32 FieldContainerType::addDescription(const FieldDescription &desc)
{
    if(!_bDescsAddable || !desc.isValid() || _mDescMap.count(desc.getCName()) != 0)
        return 0;
    // the first free id
    UInt32 id = 1;
    while(id <= _vDescVec.size() && _vDescVec[id - 1] != NULL)
        ++id;
    FieldDescription *copy = new FieldDescription(desc);
    copy->setFieldId(id);
    copy->setFieldMask(TypeTraits<BitVector>::One << id);
    if(id > _vDescVec.size())
        _vDescVec.resize(id, NULL);
    _vDescVec[id - 1]            = copy;
    _mDescMap[copy->getCName()] = copy;
    return id;
}

bool FieldContainerType::subDescription(UInt32 uiFieldId)
{
    if(!_bDescsAddable)
        return false;
    FieldDescription *desc = getFieldDescription(uiFieldId);
    if(desc == NULL)
        return false;
    _mDescMap.erase(desc->getCName());
    _vDescVec[uiFieldId - 1] = NULL;
    delete desc;
    return true;
}

FieldContainerPtr FieldContainerType::createFieldContainer(void) const
{
    FieldContainerPtr prototype = getPrototype();
    return prototype != NullFC ? prototype->shallowCopy() : FieldContainerPtr();
}

NodePtr FieldContainerType::createNode(void) const
{
    return isNode() ? NodePtr::dcast(createFieldContainer()) : NodePtr();
}

NodeCorePtr FieldContainerType::createNodeCore(void) const
{
    return isNodeCore() ? NodeCorePtr::dcast(createFieldContainer()) : NodeCorePtr();
}

AttachmentPtr FieldContainerType::createAttachment(void) const
{
    return isAttachment() ? AttachmentPtr::dcast(createFieldContainer()) : AttachmentPtr();
}

void FieldContainerType::dump(UInt32, const BitVector) const
{
    SLOG << "FieldContainerType: " << getCName() << ", Id: " << getId()
         << ", parentP: " << (_pParent != NULL ? _pParent->getCName() : "NONE")
         << ", groupId: " << _uiGroupId << ", abstract: "
         << (isAbstract() ? "true" : "false") << " " << _vDescVec.size() << std::endl;
    for(size_t i = 0; i < _vDescVec.size(); ++i)
        if(_vDescVec[i] != NULL)
            SLOG << "Desc : " << _vDescVec[i]->getCName() << std::endl;
}

bool FieldContainerType::initParentFields(void)
{
    if(getCParentName() == NULL || getParentName().isEmpty())
        return true;

    FieldContainerFactory *factory = FieldContainerFactory::the();
    FieldContainerType *parent     = factory->findType(getCParentName());
    if(parent == NULL)
        parent = factory->findUninitializedType(getCParentName());
    if(parent == NULL)
    {
        SWARNING << "ERROR: Can't find type with name " << getCParentName() << std::endl;
        return false;
    }
    if(!parent->_bInitialized && !parent->initialize())
        return false;

    _pParent = parent;
    for(size_t i = 0; i < parent->_vDescVec.size(); ++i)
    {
        FieldDescription *desc = parent->_vDescVec[i];
        if(desc == NULL)
            continue;
        if(_mDescMap.count(desc->getCName()) != 0)
        {
            SWARNING << "ERROR: Double field description in " << getCName() << " from "
                     << parent->getCName() << ": " << desc->getCName() << std::endl;
            continue;
        }
        _mDescMap[desc->getCName()] = desc;
        _vDescVec.push_back(desc);
    }
    return true;
}

bool FieldContainerType::initFields(void)
{
    UInt32 count = _uiDescByteCounter / sizeof(FieldDescription *);
    for(UInt32 i = 0; _pDesc != NULL && i < count; ++i)
    {
        FieldDescription *desc = _pDesc[i];
        if(desc == NULL || !desc->isValid())
        {
            SWARNING << "ERROR: Invalid field description in " << getCName() << std::endl;
            return false;
        }
        if(_mDescMap.count(desc->getCName()) != 0)
        {
            SWARNING << "ERROR: Double field description in " << getCName() << ": "
                     << desc->getCName() << std::endl;
            return false;
        }
        _mDescMap[desc->getCName()] = desc;
        _vDescVec.push_back(desc);
    }
    std::sort(_vDescVec.begin(), _vDescVec.end(), FieldDescriptionPLT());
    return true;
}

bool FieldContainerType::initPrototype(void)
{
    if(_fPrototypeCreate != NULL && _pPrototype == NullFC)
    {
        _pPrototype = _fPrototypeCreate();
        addRefCP(_pPrototype);
    }
    return true;
}

bool FieldContainerType::initBaseType(void)
{
    if(isDerivedFrom(NodeCore::getClassType()))
        _baseType = IsNodeCore;
    else if(isDerivedFrom(Attachment::getClassType()))
        _baseType = IsAttachment;
    else if(isDerivedFrom(Node::getClassType()))
        _baseType = IsNode;
    return true;
}

bool FieldContainerType::initialize(void)
{
    if(_bInitialized)
        return true;
    if(!initParentFields() || !initFields())
        return false;

    _bInitialized = true;
    initBaseType();

    if(_vDescVec.size() > 64)
        SWARNING << "FCType " << getCName() << " has " << _vDescVec.size()
                 << " (>64) fields!" << std::endl;

    if(_fInitMethod != NULL)
        _fInitMethod();
    initPrototype();

    FieldContainerFactory::the()->registerType(this);
    return true;
}

void FieldContainerType::terminate(void)
{
    if(_pPrototype != NullFC)
    {
        FieldContainerPtr prototype = _pPrototype;
        _pPrototype                 = NullFC;
        subRefCP(prototype);
    }
    UInt32 count = _uiDescByteCounter / sizeof(FieldDescription *);
    for(UInt32 i = 0; _pDesc != NULL && i < count; ++i)
    {
        delete _pDesc[i];
        _pDesc[i] = NULL;
    }
    _pDesc = NULL;
    _mDescMap.clear();
    _vDescVec.clear();
    _bInitialized = false;
}

OSG_END_NAMESPACE
