#include <OpenSG/OSGSimpleAttachments.h>

OSG_BEGIN_NAMESPACE

template <class AttachmentDescT>
FieldDescription *SimpleAttachment<AttachmentDescT>::_desc[] = {
    new FieldDescription(StoredFieldType::getClassType(), AttachmentDescT::getFieldName(),
                         SimpleFieldId, SimpleFieldMask, false,
                         reinterpret_cast<FieldDescription::FieldAccessMethod>(
                             &SimpleAttachment<AttachmentDescT>::getFieldAccess),
                         NULL, NULL)};

template <class AttachmentDescT>
FieldContainerType SimpleAttachment<AttachmentDescT>::_type(
    AttachmentDescT::getTypeName(), AttachmentDescT::getParentTypeName(),
    AttachmentDescT::getGroupName(),
    []() -> FieldContainerPtr { return SimpleAttachment<AttachmentDescT>::createEmpty(); }, NULL,
    _desc, sizeof(_desc), false);

template class SimpleAttachment<NameAttachmentDesc>;

const Char8 *getName(AttachmentContainerPtr container)
{
    if(container == NullFC)
        return NULL;
    NamePtr name = NamePtr::dcast(container->findAttachment(Name::getClassType().getGroupId()));
    return name != NullFC ? name->getField().getValue().c_str() : NULL;
}

void setName(AttachmentContainerPtr container, const std::string &namestring)
{
    if(container == NullFC)
    {
        FFATAL(("setName: no container?!?\n"));
        return;
    }

    AttachmentPtr att = container->findAttachment(Name::getClassType().getGroupId());
    NamePtr name;
    if(att == NullFC)
    {
        name = Name::create();
        beginEditCP(container, AttachmentContainer::AttachmentsFieldMask);
        container->addAttachment(name);
        endEditCP(container, AttachmentContainer::AttachmentsFieldMask);
    }
    else
    {
        name = NamePtr::dcast(att);
        if(name == NullFC)
        {
            FFATAL(("setName: Name Attachment is not castable to Name?!?\n"));
            return;
        }
    }

    beginEditCP(name);
    name->getField().getValue() = namestring;
    endEditCP(name);
}

void setName(AttachmentContainerPtr container, const Char8 *name)
{
    if(name == NULL)
    {
        AttachmentPtr att = container->findAttachment(Name::getClassType().getGroupId());
        if(att != NullFC)
        {
            beginEditCP(container, AttachmentContainer::AttachmentsFieldMask);
            container->subAttachment(att);
            endEditCP(container, AttachmentContainer::AttachmentsFieldMask);
        }
        return;
    }
    setName(container, std::string(name));
}

OSG_END_NAMESPACE
