#include <OpenSG/OSGAttachmentContainer.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<AttachmentMap>::_type("AttachmentMap", NULL);

template <>
const FieldType SField<AttachmentMap, 0>::_fieldType("SFAttachmentMap", "Field",
                                                     FieldDataTraits<AttachmentMap>::getType(),
                                                     SField<AttachmentMap, 0>::create,
                                                     FieldType::SINGLE_FIELD);

static bool isPublic(const AttachmentPtr &a)
{
    return a != NullFC && !a->getInternal();
}

UInt32 FieldDataTraits<AttachmentMap>::getBinSize(const AttachmentMap &map)
{
    UInt32 n = 0;
    for(AttachmentMap::const_iterator it = map.begin(); it != map.end(); ++it)
        n += isPublic(it->second);
    return sizeof(UInt32) + n * (sizeof(UInt16) + sizeof(UInt32));
}

UInt32 FieldDataTraits<AttachmentMap>::getBinSize(const AttachmentMap *map, UInt32 n)
{
    UInt32 size = 0;
    for(UInt32 i = 0; i < n; ++i)
        size += getBinSize(map[i]);
    return size;
}

void FieldDataTraits<AttachmentMap>::copyToBin(BinaryDataHandler &mem, const AttachmentMap &map)
{
    UInt32 n = 0;
    for(AttachmentMap::const_iterator it = map.begin(); it != map.end(); ++it)
        n += isPublic(it->second);
    mem.putValue(n);
    for(AttachmentMap::const_iterator it = map.begin(); it != map.end(); ++it)
    {
        if(!isPublic(it->second))
            continue;
        mem.putValue(UInt16(it->first & 0xFFFF));
        mem.putValue(it->second.getFieldContainerId());
    }
}

void FieldDataTraits<AttachmentMap>::copyToBin(BinaryDataHandler &mem, const AttachmentMap *map,
                                               UInt32 n)
{
    for(UInt32 i = 0; i < n; ++i)
        copyToBin(mem, map[i]);
}

void FieldDataTraits<AttachmentMap>::copyFromBin(BinaryDataHandler &mem, AttachmentMap &map)
{
    UInt32 n = 0;
    mem.getValue(n);
    map.clear();
    for(UInt32 i = 0; i < n && !mem.hasReadError(); ++i)
    {
        UInt16 binding = 0;
        UInt32 id      = 0;
        mem.getValue(binding);
        mem.getValue(id);
        AttachmentPtr a = AttachmentPtr::dcast(FieldContainerFactory::the()->getMappedContainer(id));
        if(a == NullFC)
        {
            SFATAL << "FieldTraitsRecurseMapper<AttachmentMap, false>::copyFromBin: "
                   << "Couldn't find container id: " << id << std::endl;
            continue;
        }
        map[(UInt32(a->getGroupId()) << 16) | binding] = a;
    }
}

void FieldDataTraits<AttachmentMap>::copyFromBin(BinaryDataHandler &mem, AttachmentMap *map,
                                                 UInt32 n)
{
    for(UInt32 i = 0; i < n; ++i)
        copyFromBin(mem, map[i]);
}

AttachmentContainer::AttachmentContainer(void) : Inherited()
{
}

AttachmentContainer::AttachmentContainer(const AttachmentContainer &source) : Inherited(source)
{
    _sfAttachments.getValue().clear();
}

AttachmentContainer::~AttachmentContainer(void)
{
}

// Runs once, on the aspect-0 copy: the other aspects hold the same
// attachments without references of their own.
void AttachmentContainer::onDestroy(void)
{
    AttachmentMap &map = _sfAttachments.getValue();
    if(!map.empty())
    {
        AttachmentContainerPtr thisP = getPtr();
        AttachmentMap attachments;
        attachments.swap(map);
        for(AttachmentMap::iterator it = attachments.begin(); it != attachments.end(); ++it)
        {
            beginEditCP(it->second, Attachment::ParentsFieldMask);
            it->second->subParent(thisP);
            endEditCP(it->second, Attachment::ParentsFieldMask);
            subRefCP(it->second);
        }
    }
    Inherited::onDestroy();
}

void AttachmentContainer::initMethod(void)
{
}

void AttachmentContainer::onCreate(const AttachmentContainer *source)
{
    if(source == NULL)
        return;
    AttachmentMap copy = source->_sfAttachments.getValue();
    for(AttachmentMap::iterator it = copy.begin(); it != copy.end(); ++it)
        addAttachment(it->second, UInt16(it->first & 0xFFFF));
}

AttachmentContainerPtr AttachmentContainer::getPtr(void)
{
    return AttachmentContainerPtr(this);
}

void AttachmentContainer::addAttachment(const AttachmentPtr &fieldContainerP, UInt16 binding)
{
    if(fieldContainerP == NullFC)
        return;

    UInt32 key = (UInt32(fieldContainerP->getGroupId()) << 16) | binding;

    addRefCP(fieldContainerP);
    beginEditCP(fieldContainerP, Attachment::ParentsFieldMask);
    fieldContainerP->addParent(getPtr());
    endEditCP(fieldContainerP, Attachment::ParentsFieldMask);

    AttachmentMap &map          = _sfAttachments.getValue();
    AttachmentMap::iterator it = map.find(key);
    if(it != map.end())
    {
        AttachmentPtr old = it->second;
        it->second        = fieldContainerP;
        beginEditCP(old, Attachment::ParentsFieldMask);
        old->subParent(getPtr());
        endEditCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }
    else
    {
        map[key] = fieldContainerP;
    }
}

void AttachmentContainer::subAttachment(const AttachmentPtr &fieldContainerP, UInt16 binding)
{
    if(fieldContainerP == NullFC)
        return;

    UInt32 key                 = (UInt32(fieldContainerP->getGroupId()) << 16) | binding;
    AttachmentMap &map          = _sfAttachments.getValue();
    AttachmentMap::iterator it = map.find(key);
    if(it == map.end())
        return;

    AttachmentPtr old = it->second;
    map.erase(it);
    beginEditCP(old, Attachment::ParentsFieldMask);
    old->subParent(getPtr());
    endEditCP(old, Attachment::ParentsFieldMask);
    subRefCP(old);
}

AttachmentPtr AttachmentContainer::findAttachment(UInt32 groupId, UInt16 binding)
{
    AttachmentMap &map          = _sfAttachments.getValue();
    AttachmentMap::iterator it = map.find((groupId << 16) | binding);
    return it != map.end() ? it->second : AttachmentPtr();
}

AttachmentPtr AttachmentContainer::findAttachment(const FieldContainerType &type, UInt16 binding)
{
    return findAttachment(type.getGroupId(), binding);
}

void AttachmentContainer::changed(BitVector whichField, UInt32 origin)
{
    // loaders hand over attachments that still need their references
    if((whichField & AttachmentsFieldMask) && (origin & ChangedOrigin::Abstract) &&
       (origin & ChangedOrigin::AbstrIncRefCount))
    {
        AttachmentMap &map = _sfAttachments.getValue();
        for(AttachmentMap::iterator it = map.begin(); it != map.end(); ++it)
            addRefCP(it->second);
    }
}

void AttachmentContainer::dump(UInt32 uiIndent, const BitVector) const
{
    const AttachmentMap &map = _sfAttachments.getValue();
    indentLog(uiIndent, PLOG);
    PLOG << "Attachments: " << map.size() << std::endl;
    for(AttachmentMap::const_iterator it = map.begin(); it != map.end(); ++it)
    {
        indentLog(uiIndent + 4, PLOG);
        PLOG << it->first << " " << (it->second != NullFC ? it->second->getTypeName() : "NullFC")
             << std::endl;
    }
}

std::ostream &operator<<(std::ostream &os, const AttachmentContainerPtr &fc)
{
    writePtr(os, "NodePtr", fc); // OpenSG prints every hand-written pointer this way
    return os;
}

OSG_END_NAMESPACE
