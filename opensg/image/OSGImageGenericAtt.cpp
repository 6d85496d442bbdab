#include <OpenSG/OSGImageGenericAtt.h>
#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

FieldContainerType ImageGenericAtt::_type(
    "ImageGenericAtt", "Attachment", "ImageGenAtt",
    []() -> FieldContainerPtr { return ImageGenericAtt::createEmpty(); },
    ImageGenericAtt::initMethod, NULL, 0, false);

namespace
{

// Any bit of a dynamic field: every bit from the first dynamic id up.
const BitVector AnyDynamicField =
    ~((TypeTraits<BitVector>::One << ImageGenericAtt::FirstDynamicFieldId) - 1);

} // namespace

ImageGenericAtt::ImageGenericAtt(void) : Inherited(), _dynFields()
{
}

ImageGenericAtt::ImageGenericAtt(const ImageGenericAtt &source)
    : Inherited(source), _dynFields(source._dynFields)
{
}

ImageGenericAtt::~ImageGenericAtt(void)
{
}

void ImageGenericAtt::initMethod(void)
{
}

ImageGenericAttPtr ImageGenericAtt::create(void)
{
    ImageGenericAttPtr fc;

    if(getClassType().getPrototype() != NullFC)
        fc = ImageGenericAttPtr::dcast(getClassType().getPrototype()->shallowCopy());

    return fc;
}

ImageGenericAttPtr ImageGenericAtt::createEmpty(void)
{
    ImageGenericAttPtr fc;

    newPtr(fc);

    return fc;
}

FieldContainerPtr ImageGenericAtt::shallowCopy(void) const
{
    ImageGenericAttPtr fc;

    newPtr(fc, this);

    return fc;
}

BitVector ImageGenericAtt::dynamicFieldMask(UInt32 fieldId)
{
    return TypeTraits<BitVector>::One << (fieldId < 63 ? fieldId : 63);
}

UInt32 ImageGenericAtt::addField(const std::string &name)
{
    if(name.empty())
        return 0;

    if(UInt32 id = findFieldId(name))
        return id;

    size_t slot = 0;

    while(slot < _dynFields.size() && _dynFields[slot].used)
        ++slot;

    if(slot == _dynFields.size())
        _dynFields.push_back(DynField());

    _dynFields[slot].used = true;
    _dynFields[slot].name = name;
    _dynFields[slot].field.setValue(std::string());

    return UInt32(slot) + FirstDynamicFieldId;
}

bool ImageGenericAtt::subField(UInt32 fieldId)
{
    if(getDynamicField(fieldId) == NULL)
        return false;

    DynField &f = _dynFields[fieldId - FirstDynamicFieldId];

    f.used = false;
    f.name.clear();
    f.field.setValue(std::string());

    while(!_dynFields.empty() && !_dynFields.back().used)
        _dynFields.pop_back();

    return true;
}

UInt32 ImageGenericAtt::findFieldId(const std::string &name) const
{
    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        if(_dynFields[i].used && _dynFields[i].name == name)
            return UInt32(i) + FirstDynamicFieldId;
    }

    return 0;
}

SFString *ImageGenericAtt::getDynamicField(UInt32 fieldId)
{
    return const_cast<SFString *>(
        static_cast<const ImageGenericAtt *>(this)->getDynamicField(fieldId));
}

const SFString *ImageGenericAtt::getDynamicField(UInt32 fieldId) const
{
    if(fieldId < FirstDynamicFieldId ||
       fieldId - FirstDynamicFieldId >= _dynFields.size())
    {
        return NULL;
    }

    const DynField &f = _dynFields[fieldId - FirstDynamicFieldId];

    return f.used ? &f.field : NULL;
}

const std::string *ImageGenericAtt::getDynamicFieldName(UInt32 fieldId) const
{
    return getDynamicField(fieldId) != NULL
               ? &_dynFields[fieldId - FirstDynamicFieldId].name
               : NULL;
}

UInt32 ImageGenericAtt::getNumDynamicFields(void) const
{
    UInt32 n = 0;

    for(size_t i = 0; i < _dynFields.size(); ++i)
        n += _dynFields[i].used ? 1 : 0;

    return n;
}

// The wire form carries values only; both ends must hold the same keys, as
// with any container whose field layout the receiver has to know.
UInt32 ImageGenericAtt::getBinSize(const BitVector &whichField)
{
    UInt32 size = Inherited::getBinSize(whichField);

    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        const UInt32 id = UInt32(i) + FirstDynamicFieldId;

        if(_dynFields[i].used && (dynamicFieldMask(id) & whichField))
            size += _dynFields[i].field.getBinSize();
    }

    return size;
}

void ImageGenericAtt::copyToBin(BinaryDataHandler &pMem,
                                const BitVector   &whichField)
{
    Inherited::copyToBin(pMem, whichField);

    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        const UInt32 id = UInt32(i) + FirstDynamicFieldId;

        if(_dynFields[i].used && (dynamicFieldMask(id) & whichField))
            _dynFields[i].field.copyToBin(pMem);
    }
}

void ImageGenericAtt::copyFromBin(BinaryDataHandler &pMem,
                                  const BitVector   &whichField)
{
    Inherited::copyFromBin(pMem, whichField);

    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        const UInt32 id = UInt32(i) + FirstDynamicFieldId;

        if(_dynFields[i].used && (dynamicFieldMask(id) & whichField))
            _dynFields[i].field.copyFromBin(pMem);
    }
}

// Keys are added without an edit of their own, so a sync that touches any
// dynamic field brings the whole key list across before the values.
void ImageGenericAtt::executeSyncImpl(ImageGenericAtt *pOther,
                                      const BitVector &whichField)
{
    Inherited::executeSyncImpl(pOther, whichField);

    if((whichField & AnyDynamicField) == 0)
        return;

    _dynFields.resize(pOther->_dynFields.size());

    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        const UInt32 id = UInt32(i) + FirstDynamicFieldId;

        _dynFields[i].used = pOther->_dynFields[i].used;
        _dynFields[i].name = pOther->_dynFields[i].name;

        if(dynamicFieldMask(id) & whichField)
            _dynFields[i].field.syncWith(pOther->_dynFields[i].field);
    }
}

void ImageGenericAtt::executeSync(FieldContainer &other,
                                  const BitVector &whichField)
{
    executeSyncImpl(static_cast<ImageGenericAtt *>(&other), whichField);
}

void ImageGenericAtt::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ImageGenericAtt::dump(UInt32 uiIndent, const BitVector) const
{
    indentLog(uiIndent, PLOG);
    PLOG << "ImageGenericAtt: " << getNumDynamicFields() << " keys" << std::endl;

    for(size_t i = 0; i < _dynFields.size(); ++i)
    {
        if(!_dynFields[i].used)
            continue;

        indentLog(uiIndent + 4, PLOG);
        PLOG << _dynFields[i].name << ": " << _dynFields[i].field.getValue()
             << std::endl;
    }
}

OSG_END_NAMESPACE
