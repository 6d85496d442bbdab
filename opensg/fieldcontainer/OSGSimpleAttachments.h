/// Attachments holding a single field, and the Name attachment.
#ifndef _OSGSIMPLEATTACHMENTS_H_
#define _OSGSIMPLEATTACHMENTS_H_

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGFieldDescription.h>

OSG_BEGIN_NAMESPACE

/// An attachment with one field, described by AttachmentDescT.
template <class AttachmentDescT>
class SimpleAttachment : public Attachment
{
  private:
    typedef Attachment Inherited;

  public:
    typedef typename AttachmentDescT::FieldTypeT StoredFieldType;
    typedef SimpleAttachment<AttachmentDescT>    Self;
    typedef FCPtr<AttachmentPtr, Self>           PtrType;

    enum
    {
        SimpleFieldId = Inherited::NextFieldId,
        NextFieldId   = SimpleFieldId + 1
    };

    static const BitVector SimpleFieldMask;

    static FieldContainerType &getClassType(void) { return _type; }
    static UInt32 getClassTypeId(void) { return _type.getId(); }

    static PtrType create(void)
    {
        PtrType fc;
        if(getClassType().getPrototype() != NullFC)
            fc = PtrType::dcast(getClassType().getPrototype()->shallowCopy());
        return fc;
    }

    static PtrType createEmpty(void)
    {
        PtrType fc;
        newPtr(fc);
        return fc;
    }

    StoredFieldType *getFieldPtr(void) { return &_field; }
    StoredFieldType &getField(void) { return _field; }
    const StoredFieldType &getField(void) const { return _field; }

    virtual FieldContainerType &getType(void) { return _type; }
    virtual const FieldContainerType &getType(void) const { return _type; }
    virtual UInt32 getContainerSize(void) const { return sizeof(Self); }

    virtual FieldContainerPtr shallowCopy(void) const
    {
        PtrType fc;
        newPtr(fc, this);
        return fc;
    }

    virtual UInt32 getBinSize(const BitVector &whichField)
    {
        UInt32 size = Inherited::getBinSize(whichField);
        if(FieldBits::NoField != (SimpleFieldMask & whichField))
            size += _field.getBinSize();
        return size;
    }

    virtual void copyToBin(BinaryDataHandler &pMem, const BitVector &whichField)
    {
        Inherited::copyToBin(pMem, whichField);
        if(FieldBits::NoField != (SimpleFieldMask & whichField))
            _field.copyToBin(pMem);
    }

    virtual void copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField)
    {
        Inherited::copyFromBin(pMem, whichField);
        if(FieldBits::NoField != (SimpleFieldMask & whichField))
            _field.copyFromBin(pMem);
    }

    virtual void changed(BitVector whichField, UInt32 origin)
    {
        Inherited::changed(whichField, origin);
    }

    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const
    {
        SLOG << "Dump " << AttachmentDescT::getTypeName() << " NI" << std::endl;
    }

  protected:
    SimpleAttachment(void) : Inherited(), _field() {}
    SimpleAttachment(const SimpleAttachment &source) : Inherited(source), _field(source._field) {}
    virtual ~SimpleAttachment(void) {}

    void executeSyncImpl(SimpleAttachment *pOther, const BitVector &whichField)
    {
        Inherited::executeSyncImpl(pOther, whichField);
        if(FieldBits::NoField != (SimpleFieldMask & whichField))
            _field.syncWith(pOther->_field);
    }

    virtual void executeSync(FieldContainer &other, const BitVector &whichField)
    {
        executeSyncImpl(static_cast<SimpleAttachment *>(&other), whichField);
    }

    StoredFieldType _field;

  private:
    friend class FieldContainer;

    Field *getFieldAccess(void) { return &_field; }

    static FieldDescription  *_desc[];
    static FieldContainerType _type;

    void operator=(const SimpleAttachment &source);
};

template <class AttachmentDescT>
const BitVector SimpleAttachment<AttachmentDescT>::SimpleFieldMask =
    TypeTraits<BitVector>::One << SimpleAttachment<AttachmentDescT>::SimpleFieldId;

struct NameAttachmentDesc
{
    typedef SFString FieldTypeT;

    static const Char8 *getTypeName(void) { return "Name"; }
    static const Char8 *getFieldName(void) { return "name"; }
    static const Char8 *getGroupName(void) { return "name"; }
    static const Char8 *getParentTypeName(void) { return "Attachment"; }
};

typedef SimpleAttachment<NameAttachmentDesc> Name;
typedef FCPtr<AttachmentPtr, Name>           NamePtr;

extern template class SimpleAttachment<NameAttachmentDesc>;

struct VoidPAttachmentDesc
{
    typedef SFVoidP FieldTypeT;

    static const Char8 *getTypeName(void) { return "VoidPAttachment"; }
    static const Char8 *getFieldName(void) { return "data"; }
    static const Char8 *getGroupName(void) { return "voidp"; }
    static const Char8 *getParentTypeName(void) { return "Attachment"; }
};

/// An application pointer hung on a container; the pointee is not owned.
typedef SimpleAttachment<VoidPAttachmentDesc> VoidPAttachment;
typedef FCPtr<AttachmentPtr, VoidPAttachment> VoidPAttachmentPtr;

extern template class SimpleAttachment<VoidPAttachmentDesc>;

/// The name of a container, or NULL when it has none.
const Char8 *getName(AttachmentContainerPtr container);

/// Names a container, adding a Name attachment when needed.
void setName(AttachmentContainerPtr container, const std::string &name);

/// Names a container; NULL removes the name.
void setName(AttachmentContainerPtr container, const Char8 *name);

/// The pointer of the container's VoidPAttachment, or NULL when it has none.
void *getVoidP(AttachmentContainerPtr container);

/// Stores data in the container's VoidPAttachment, adding one when needed;
/// internal marks a new attachment as the system's own.
void setVoidP(AttachmentContainerPtr container, void *data, bool internal = false);

OSG_END_NAMESPACE

#endif
