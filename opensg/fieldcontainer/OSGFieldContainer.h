/// Abstract root of every field container.
#ifndef _OSGFIELDCONTAINER_H_
#define _OSGFIELDCONTAINER_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGBaseTypeTraits.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGLog.h>

#include <new>

OSG_BEGIN_NAMESPACE

class BinaryDataHandler;
class Field;

class FieldContainer
{
  public:
    enum { NextFieldId = 1 };

    static const BitVector NextFieldMask;
    static const BitVector MTInfluenceMask;
    static const bool      isNodeCore = false;

    /// Never defined: <Class>NodePtr of a type that is no node core names
    /// it, so using that pointer type fails to compile.
    struct attempt_to_create_CoredNodePtr_on_non_NodeCore_FC;

    static FieldContainerType &getClassType(void) { return _type; }
    static UInt32 getClassTypeId(void) { return _type.getId(); }
    static UInt16 getClassGroupId(void) { return _type.getGroupId(); }

    UInt32 getTypeId(void) const { return getType().getId(); }
    UInt16 getGroupId(void) const { return getType().getGroupId(); }
    const Char8 *getTypeName(void) const { return getType().getCName(); }

    /// The field of that id or name, reached through its description.
    Field *getField(UInt32 fieldId);
    Field *getField(const Char8 *fieldName);

    // the virtual operations, in OpenSG's slot order
    virtual FieldContainerType &getType(void);
    virtual const FieldContainerType &getType(void) const;
    virtual UInt32 getContainerSize(void) const = 0;
    virtual FieldContainerPtr shallowCopy(void) const = 0;
    virtual UInt32 getBinSize(const BitVector &whichField);
    virtual void copyToBin(BinaryDataHandler &pMem, const BitVector &whichField);
    virtual void copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField);
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const = 0;

  protected:
    FieldContainer(void) : _shares(0) {}
    FieldContainer(const FieldContainer &) : _shares(0) {}
    virtual ~FieldContainer(void);

    virtual void onDestroy(void);
    virtual void executeSync(FieldContainer &other, const BitVector &whichField) = 0;

    void executeSyncImpl(FieldContainer *, const BitVector &) {}

    void onCreate(const FieldContainer *source = NULL) {}
    void onCreateAspect(const FieldContainer *aspect0, const FieldContainer *source = NULL) {}

    template <class FieldTypeT>
    void beginEditX(const BitVector &whichField, FieldTypeT &) {}
    template <class FieldTypeT>
    void endEditX(const BitVector &whichField, FieldTypeT &)
    {
        endEditCP(FieldContainerPtr(this), whichField);
    }

    /// Makes a new container: one block with the reference count, the id
    /// and one default-constructed object per aspect.
    template <class ObjectPtrT>
    static void newPtr(ObjectPtrT &result)
    {
        typedef typename ObjectPtrT::StoredObjectType ObjectType;
        UInt8 *store = allocBlock(result, sizeof(ObjectType));
        for(UInt32 i = 0; i < ThreadManager::getNumAspects(); ++i)
            new(store + sizeof(ObjectType) * i) ObjectType();
        finishCreate<ObjectType>(result, NULL);
    }

    /// The same, each aspect object copy-constructed from prototypeP.
    template <class ObjectPtrT>
    static void newPtr(ObjectPtrT &result,
                       const typename ObjectPtrT::StoredObjectType *prototypeP)
    {
        typedef typename ObjectPtrT::StoredObjectType ObjectType;
        UInt8 *store = allocBlock(result, sizeof(ObjectType));
        for(UInt32 i = 0; i < ThreadManager::getNumAspects(); ++i)
            new(store + sizeof(ObjectType) * i) ObjectType(*prototypeP);
        finishCreate<ObjectType>(result, prototypeP);
    }

    UInt32 _shares;

  private:
    friend class FieldContainerPtrBase;
    friend class FieldContainerType;

    static UInt8 *allocBlock(FieldContainerPtr &result, UInt32 size);

    template <class ObjectType, class ObjectPtrT>
    static void finishCreate(ObjectPtrT &result, const ObjectType *source)
    {
        ObjectType *current = result.getCPtr();
        current->onCreate(source);
        ObjectType *aspect0 = static_cast<ObjectType *>(result.getAspectCPtr(0));
        for(UInt32 i = 0; i < ThreadManager::getNumAspects(); ++i)
            static_cast<ObjectType *>(result.getAspectCPtr(i))->onCreateAspect(aspect0, source);
    }

    static FieldContainerType _type;

    void operator=(const FieldContainer &);
};

typedef FieldContainer *FieldContainerP;

OSG_END_NAMESPACE

// --- macros of hand-written containers (templates such as SimpleAttachment) --

/// The id and the mask of a field as two arguments: X##Id, X##Mask.
#define OSG_FC_FIELD_IDM_DESC(OSG_FIELDNAME) OSG_FIELDNAME##Id, OSG_FIELDNAME##Mask

/// Defines the type of the container template OSG_CLASS for the description
/// T1, which supplies the names, the init method and one field description.
/// OSG_DLLMAP is the export decoration (empty on Linux).
#define OSG_FC_DLLEXPORT_DEF(OSG_CLASS, T1, OSG_DLLMAP)                         \
    template <>                                                                 \
    OSG_DLLMAP OSG::FieldContainerType OSG_CLASS<T1>::_type(                    \
        T1::getTypeName(), T1::getParentTypeName(), T1::getGroupName(),         \
        []() -> OSG::FieldContainerPtr { return OSG_CLASS<T1>::createEmpty(); }, \
        T1::getInitMethod(), T1::getDesc(), sizeof(OSG::FieldDescription *));

/// Declares what OSG_FC_DLLEXPORT_DEF defines.
#define OSG_FC_DLLEXPORT_DECL(OSG_CLASS, T1, OSG_DLLMAP) \
    template <>                                          \
    OSG_DLLMAP OSG::FieldContainerType OSG_CLASS<T1>::_type;

/// The inline type functions of a container template: Windows builds only.
#define OSG_FC_TYPE_FUNCTIONS_INL_TMPL_DEF(OSG_TMPL_PARAM, OSG_CLASS)

#endif
