/// The key/value store of images: an attachment whose string fields are
/// added at run time, one per key (Image::setAttachmentField).
///
/// The fields belong to the instance, not to the class type: each key gets
/// the first free field id from 3 up (after Attachment's parents and
/// internal) and the mask 1 << id, ids of 63 and above sharing bit 63. The
/// class type itself describes no dynamic field, so they are reached
/// through this class's functions rather than FieldContainer::getField.
#ifndef _OSGIMAGEGENERICATT_H_
#define _OSGIMAGEGENERICATT_H_

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGBaseFields.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class ImageGenericAtt;

typedef FCPtr<AttachmentPtr, ImageGenericAtt> ImageGenericAttPtr;

class ImageGenericAtt : public Attachment
{
  private:
    typedef Attachment Inherited;

  public:
    typedef ImageGenericAttPtr Ptr;

    /// The id the first dynamic field gets.
    enum { FirstDynamicFieldId = Inherited::NextFieldId };

    static FieldContainerType &getClassType(void) { return _type; }
    static UInt32 getClassTypeId(void) { return _type.getId(); }

    static ImageGenericAttPtr create(void);
    static ImageGenericAttPtr createEmpty(void);

    virtual FieldContainerType &getType(void) { return _type; }
    virtual const FieldContainerType &getType(void) const { return _type; }
    virtual UInt32 getContainerSize(void) const { return sizeof(ImageGenericAtt); }
    virtual FieldContainerPtr shallowCopy(void) const;

    /// Adds a string field called name and answers its id; an existing name
    /// answers the id it has. 0 for an empty name.
    UInt32 addField(const std::string &name);
    /// Removes a dynamic field; its id becomes free for the next addField.
    bool subField(UInt32 fieldId);

    /// The id of the field called name, or 0.
    UInt32 findFieldId(const std::string &name) const;

    /// The field of that id, or NULL when there is none.
    SFString *getDynamicField(UInt32 fieldId);
    const SFString *getDynamicField(UInt32 fieldId) const;
    /// The name of the field of that id, or NULL when there is none.
    const std::string *getDynamicFieldName(UInt32 fieldId) const;

    /// Number of keys held.
    UInt32 getNumDynamicFields(void) const;

    static BitVector dynamicFieldMask(UInt32 fieldId);

    virtual UInt32 getBinSize(const BitVector &whichField);
    virtual void copyToBin(BinaryDataHandler &pMem, const BitVector &whichField);
    virtual void copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ImageGenericAtt(void);
    ImageGenericAtt(const ImageGenericAtt &source);
    virtual ~ImageGenericAtt(void);

    void executeSyncImpl(ImageGenericAtt *pOther, const BitVector &whichField);
    virtual void executeSync(FieldContainer &other, const BitVector &whichField);

  private:
    friend class FieldContainer;

    struct DynField
    {
        bool        used;
        std::string name;
        SFString    field;
    };

    /// Index = field id - FirstDynamicFieldId; removed fields leave a gap.
    std::vector<DynField> _dynFields;

    static void initMethod(void);

    static FieldContainerType _type;

    void operator=(const ImageGenericAtt &source);
};

typedef ImageGenericAtt *ImageGenericAttP;

OSG_END_NAMESPACE

#endif
