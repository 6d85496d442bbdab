#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGBaseInitFunctions.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

const NullFieldContainerPtr NullFC;

LockPool *FieldContainerPtrBase::_pRefCountLock = NULL;

const BitVector FieldContainer::NextFieldMask   = TypeTraits<BitVector>::One << NextFieldId;
const BitVector FieldContainer::MTInfluenceMask = 0;

FieldContainerType FieldContainer::_type("FieldContainer");

// --- FieldContainer --------------------------------------------------------

FieldContainer::~FieldContainer(void)
{
}

FieldContainerType &FieldContainer::getType(void)
{
    return _type;
}

const FieldContainerType &FieldContainer::getType(void) const
{
    return _type;
}

UInt32 FieldContainer::getBinSize(const BitVector &)
{
    return 0;
}

void FieldContainer::copyToBin(BinaryDataHandler &, const BitVector &)
{
}

void FieldContainer::copyFromBin(BinaryDataHandler &, const BitVector &)
{
}

void FieldContainer::changed(BitVector, UInt32)
{
}

void FieldContainer::onDestroy(void)
{
}

Field *FieldContainer::getField(UInt32 fieldId)
{
    const FieldDescription *desc = getType().getFieldDescription(fieldId);
    return desc != NULL ? desc->getField(*this) : NULL;
}

Field *FieldContainer::getField(const Char8 *fieldName)
{
    const FieldDescription *desc = getType().findFieldDescription(fieldName);
    return desc != NULL ? desc->getField(*this) : NULL;
}

UInt8 *FieldContainer::allocBlock(FieldContainerPtr &result, UInt32 size)
{
    UInt32 numAspects = ThreadManager::getNumAspects();
    UInt8 *block      = static_cast<UInt8 *>(::operator new(8 + size_t(size) * numAspects));
    *reinterpret_cast<Int32 *>(block) = 0;
    result.setStore(block + 8, size);
    UInt32 id = FieldContainerFactory::the()->registerFieldContainer(result);
    *reinterpret_cast<UInt32 *>(block + 4) = id;
    Thread::getCurrentChangeList()->addCreated(id);
    return block + 8;
}

// --- pointers ----------------------------------------------------------------

FieldContainerPtr::FieldContainerPtr(const FieldContainer &source)
    : FieldContainerPtrBase(&source, source.getContainerSize())
{
}

FieldContainerPtr::FieldContainerPtr(const FieldContainer *source)
    : FieldContainerPtrBase(source, source != NULL ? source->getContainerSize() : 0)
{
}

const FieldContainerPtr &FieldContainerPtr::null(void)
{
    return NullFC;
}

void FieldContainerPtrBase::addRef(void) const
{
    if(_pRefCountLock != NULL)
        _pRefCountLock->aquire(_storeP);
    ++*refCountP();
    if(_pRefCountLock != NULL)
        _pRefCountLock->release(_storeP);
    Thread::getCurrentChangeList()->addAddRefd(*static_cast<const FieldContainerPtr *>(this));
}

void FieldContainerPtrBase::subRef(void) const
{
    if(_pRefCountLock != NULL)
        _pRefCountLock->aquire(_storeP);
    Int32 count = --*refCountP();
    if(_pRefCountLock != NULL)
        _pRefCountLock->release(_storeP);

    if(count <= 0)
    {
        deleteContainers();
        // the very pointer object that let go of the container becomes null
        FieldContainerPtrBase *self = const_cast<FieldContainerPtrBase *>(this);
        self->_storeP               = NULL;
        self->_containerSize        = 0;
    }
    else
    {
        Thread::getCurrentChangeList()->addSubRefd(*static_cast<const FieldContainerPtr *>(this));
    }
}

void FieldContainerPtrBase::deleteContainers(void) const
{
    UInt32 id = getFieldContainerId();
    Thread::getCurrentChangeList()->addDestroyed(id);
    FieldContainerFactory::the()->unregisterFieldContainer(
        *static_cast<const FieldContainerPtr *>(this));

    getAspectCPtr(0)->onDestroy();
    for(UInt32 i = 0; i < ThreadManager::getNumAspects(); ++i)
        getAspectCPtr(i)->~FieldContainer();

    ::operator delete(_storeP - 8);
}

void FieldContainerPtrBase::executeSync(UInt32 uiFromAspect, UInt32 uiToAspect,
                                        BitVector whichField) const
{
    FieldContainer *dst = getAspectCPtr(uiToAspect);
    FieldContainer *src = getAspectCPtr(uiFromAspect);
    dst->executeSync(*src, whichField);
    dst->changed(whichField, ChangedOrigin::Sync);
}

void FieldContainerPtrBase::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    indentLog(uiIndent, PLOG);
    PLOG << "FCPtr Dump :" << std::endl;
    if(_storeP == NULL)
        return;
    indentLog(uiIndent + 4, PLOG);
    PLOG << "Id       : " << std::dec << getFieldContainerId() << std::endl;
    indentLog(uiIndent + 4, PLOG);
    PLOG << "Storage  : " << static_cast<const void *>(_storeP) << std::endl;
    if(bvFlags & FCDumpFlags::RefCount)
    {
        indentLog(uiIndent + 4, PLOG);
        PLOG << "RefCount : " << getRefCount() << std::endl;
    }
}

void addRefCP(const FieldContainerPtrBase &objectP)
{
    if(objectP._storeP != NULL)
        objectP.addRef();
}

void subRefCP(const FieldContainerPtrBase &objectP)
{
    if(objectP._storeP != NULL)
        objectP.subRef();
}

void setRefdCP(FieldContainerPtrBase &objectP, const FieldContainerPtrBase &newObjectP)
{
    if(objectP != newObjectP)
    {
        FieldContainerPtrBase old = objectP;
        objectP                   = newObjectP;
        addRefCP(objectP);
        subRefCP(old);
    }
}

void clearRefCP(FieldContainerPtrBase &objectP)
{
    if(objectP != NullFC)
    {
        FieldContainerPtrBase old = objectP;
        objectP                   = NullFC;
        subRefCP(old);
    }
}

void beginEditCP(const FieldContainerPtr &, BitVector, UInt32)
{
    // edits are written straight into the current aspect; nothing to open
}

void endEditCP(const FieldContainerPtr &objectP, BitVector whichField, UInt32 origin)
{
    if(objectP == NullFC)
        return;
    Thread::getCurrentChangeList()->addChanged(objectP, whichField);
    objectP->changed(whichField, origin);
}

void changedCP(const FieldContainerPtr &objectP, BitVector whichField, UInt32 origin)
{
    if(objectP != NullFC)
        objectP->changed(whichField, origin);
}

void endEditNotChangedCP(const FieldContainerPtr &objectP, BitVector whichField, UInt32)
{
    if(objectP != NullFC)
        Thread::getCurrentChangeList()->addChanged(objectP, whichField);
}

void writePtr(std::ostream &os, const Char8 *label, const FieldContainerPtrBase &ptr)
{
    os << label << " 0x" << std::hex << static_cast<const void *>(&ptr);
    if(ptr == NullFC)
        os << ":NullFC";
    else
        os << ":" << ptr.getAspectCPtr(Thread::getAspect())->getType().getCName() << "Ptr(0x"
           << static_cast<const void *>(ptr.getAspectCPtr(Thread::getAspect())) << ")";
    os << std::dec;
}

std::ostream &operator<<(std::ostream &os, const FieldContainerPtr &fc)
{
    writePtr(os, "FieldContainerPtr", fc);
    return os;
}

bool initializeFieldContainerPtr(void)
{
    FieldContainerPtrBase::_pRefCountLock =
        ThreadManager::the()->getLockPool("DSPTRRefCountLockPool");
    return FieldContainerPtrBase::_pRefCountLock != NULL;
}

bool terminateFieldContainerPtr(void)
{
    FieldContainerPtrBase::_pRefCountLock = NULL;
    return true;
}

OSG_END_NAMESPACE
