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
template class SimpleAttachment<VoidPAttachmentDesc>;

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

void *getVoidP(AttachmentContainerPtr container)
{
    if(container == NullFC)
        return NULL;
    VoidPAttachmentPtr att = VoidPAttachmentPtr::dcast(
        container->findAttachment(VoidPAttachment::getClassType().getGroupId()));
    return att != NullFC ? att->getField().getValue() : NULL;
}

void setVoidP(AttachmentContainerPtr container, void *data, bool internal)
{
    if(container == NullFC)
    {
        FFATAL(("setVoidP: no container?!?\n"));
        return;
    }

    AttachmentPtr      att = container->findAttachment(VoidPAttachment::getClassType().getGroupId());
    VoidPAttachmentPtr voidp;
    if(att == NullFC)
    {
        voidp = VoidPAttachment::create();
        beginEditCP(voidp, Attachment::InternalFieldMask);
        voidp->setInternal(internal);
        endEditCP(voidp, Attachment::InternalFieldMask);
        beginEditCP(container, AttachmentContainer::AttachmentsFieldMask);
        container->addAttachment(voidp);
        endEditCP(container, AttachmentContainer::AttachmentsFieldMask);
    }
    else
    {
        voidp = VoidPAttachmentPtr::dcast(att);
        if(voidp == NullFC)
        {
            FFATAL(("setVoidP: VoidP Attachment is not castable to VoidP?!?\n"));
            return;
        }
    }

    beginEditCP(voidp, VoidPAttachment::SimpleFieldMask);
    voidp->getField().setValue(data);
    endEditCP(voidp, VoidPAttachment::SimpleFieldMask);
}

OSG_END_NAMESPACE
