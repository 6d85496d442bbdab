/// The run-time type of a container class: fields, prototype, group.
#ifndef _OSGFIELDCONTAINERTYPE_H_
#define _OSGFIELDCONTAINERTYPE_H_

#include <OpenSG/OSGDataType.h>
#include <OpenSG/OSGFieldContainerPtr.h>

#include <map>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class FieldDescription;
class NodePtr;
class FieldContainer;
class NodeCore;
class AttachmentContainer;
class Attachment;
template <class BasePtrTypeT, class FieldContainerTypeT> class FCPtr;
typedef FCPtr<FieldContainerPtr, AttachmentContainer> AttachmentContainerPtr;
typedef FCPtr<AttachmentContainerPtr, NodeCore> NodeCorePtr;
typedef FCPtr<FieldContainerPtr, Attachment> AttachmentPtr;

typedef FieldContainerPtr (*PrototypeCreateF)(void);
typedef void (*InitContainerF)(void);

class FieldContainerType : public DataType
{
  public:
    typedef osg::PrototypeCreateF PrototypeCreateF;
    typedef osg::InitContainerF   InitContainerF;

    FieldContainerType(const Char8 *szName,
                       const Char8 *szParentName     = NULL,
                       const Char8 *szGroupName      = NULL,
                       PrototypeCreateF fPrototypeCreate = NULL,
                       InitContainerF fInitMethod    = NULL,
                       FieldDescription **pDesc      = NULL,
                       UInt32 uiDescByteCounter      = 0,
                       bool bDescsAddable            = false);
    virtual ~FieldContainerType(void);

    UInt16 getGroupId(void) const { return _uiGroupId; }
    FieldContainerType *getParent(void) const { return _pParent; }

    FieldContainerPtr getPrototype(void) const;
    bool setPrototype(FieldContainerPtr pPrototype);

    bool isInitialized(void) const { return _bInitialized; }
    bool isAbstract(void) const;

    using TypeBase::isDerivedFrom;
    bool isDerivedFrom(const FieldContainerType &other) const;

    bool isNode(void) const { return _baseType == IsNode; }
    bool isNodeCore(void) const { return _baseType == IsNodeCore; }
    bool isAttachment(void) const { return _baseType == IsAttachment; }

    /// The description of a field id (1 is the first field), or NULL.
    FieldDescription *getFieldDescription(UInt32 uiFieldId);
    const FieldDescription *getFieldDescription(UInt32 uiFieldId) const;
    FieldDescription *findFieldDescription(const Char8 *szFieldName);
    const FieldDescription *findFieldDescription(const Char8 *szFieldName) const;
    UInt32 getNumFieldDescs(void) const { return UInt32(_vDescVec.size()); }

    UInt32 addDescription(const FieldDescription &desc);
    bool subDescription(UInt32 uiFieldId);

    FieldContainerPtr createFieldContainer(void) const;
    NodePtr createNode(void) const;
    NodeCorePtr createNodeCore(void) const;
    AttachmentPtr createAttachment(void) const;

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    enum BaseType
    {
        IsFieldContainer,
        IsNode,
        IsNodeCore,
        IsAttachment
    };

    bool initialize(void);
    void terminate(void);
    bool initPrototype(void);
    bool initBaseType(void);
    bool initFields(void);
    bool initParentFields(void);

    friend class FieldContainerFactory;

  private:
    typedef std::map<std::string, FieldDescription *> DescMap;
    typedef std::vector<FieldDescription *>           DescVec;

    UInt16             _uiGroupId;
    bool               _bInitialized;
    bool               _bDescsAddable;
    BaseType           _baseType;
    FieldContainerType *_pParent;
    IDString           _szGroupName;
    FieldContainerPtr  _pPrototype;
    PrototypeCreateF   _fPrototypeCreate;
    InitContainerF     _fInitMethod;
    FieldDescription **_pDesc;
    UInt32             _uiDescByteCounter;
    DescMap            _mDescMap;
    DescVec            _vDescVec;

    FieldContainerType(const FieldContainerType &);
    void operator=(const FieldContainerType &);
};

OSG_END_NAMESPACE

#endif
