/// Pointers to field containers: one pointer reaches every aspect copy.
#ifndef _OSGFIELDCONTAINERPTR_H_
#define _OSGFIELDCONTAINERPTR_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGThread.h>

#include <iosfwd>

OSG_BEGIN_NAMESPACE

class FieldContainer;
class FieldContainerFactory;
class LockPool;
class NullFieldContainerPtr;

namespace FieldBits
{
const BitVector AllFields = 0xFFFFFFFFFFFFFFFFULL;
const BitVector NoField   = 0x0000000000000000ULL;
const BitVector Field0  = 0x1ULL << 0,  Field1  = 0x1ULL << 1,  Field2  = 0x1ULL << 2;
const BitVector Field3  = 0x1ULL << 3,  Field4  = 0x1ULL << 4,  Field5  = 0x1ULL << 5;
const BitVector Field6  = 0x1ULL << 6,  Field7  = 0x1ULL << 7,  Field8  = 0x1ULL << 8;
const BitVector Field9  = 0x1ULL << 9,  Field10 = 0x1ULL << 10, Field11 = 0x1ULL << 11;
const BitVector Field12 = 0x1ULL << 12, Field13 = 0x1ULL << 13, Field14 = 0x1ULL << 14;
const BitVector Field15 = 0x1ULL << 15, Field16 = 0x1ULL << 16, Field17 = 0x1ULL << 17;
const BitVector Field18 = 0x1ULL << 18, Field19 = 0x1ULL << 19, Field20 = 0x1ULL << 20;
const BitVector Field21 = 0x1ULL << 21, Field22 = 0x1ULL << 22, Field23 = 0x1ULL << 23;
const BitVector Field24 = 0x1ULL << 24, Field25 = 0x1ULL << 25, Field26 = 0x1ULL << 26;
const BitVector Field27 = 0x1ULL << 27, Field28 = 0x1ULL << 28, Field29 = 0x1ULL << 29;
const BitVector Field30 = 0x1ULL << 30, Field31 = 0x1ULL << 31;
} // namespace FieldBits

namespace ChangedOrigin
{
const UInt32 External         = 0x0001;
const UInt32 Sync             = 0x0002;
const UInt32 Child            = 0x0004;
const UInt32 Abstract         = 0x0008;
const UInt32 AbstrIgnoreCore  = 0x0100;
const UInt32 AbstrIgnoreChild = 0x0200;
const UInt32 AbstrCheckValid  = 0x0400;
const UInt32 AbstrIncRefCount = 0x0800;
} // namespace ChangedOrigin

namespace FCDumpFlags
{
const BitVector RefCount   = 1;
const BitVector AllAspects = 2;
const BitVector All        = 0xFFFFFFFF;
} // namespace FCDumpFlags

/// The untyped part of every container pointer. A container is one block:
/// reference count, container id, then one object per aspect; the pointer
/// holds the address of the aspect-0 object and the object size.
class FieldContainerPtrBase
{
  public:
    static const UInt16 InvalidParentEPos = 0xFFFF;

    FieldContainerPtrBase(void) : _containerSize(0), _uiParentEPos(InvalidParentEPos), _storeP(NULL) {}
    FieldContainerPtrBase(const FieldContainerPtrBase &source) = default;
    FieldContainerPtrBase &operator=(const FieldContainerPtrBase &source) = default;

    Int32 getRefCount(void) const
    {
        return _storeP != NULL ? *reinterpret_cast<const Int32 *>(_storeP - 8) : 0;
    }
    UInt32 getFieldContainerId(void) const
    {
        return _storeP != NULL ? *reinterpret_cast<const UInt32 *>(_storeP - 4) : 0;
    }
    UInt32 getContainerSize(void) const { return _containerSize; }

    FieldContainer *getBaseCPtr(void) const
    {
        return reinterpret_cast<FieldContainer *>(_storeP);
    }
    FieldContainer *getAspectCPtr(UInt32 uiAspectId) const
    {
        return _storeP != NULL ? reinterpret_cast<FieldContainer *>(_storeP + _containerSize * uiAspectId)
                               : NULL;
    }

    bool operator==(const FieldContainerPtrBase &other) const { return _storeP == other._storeP; }
    bool operator!=(const FieldContainerPtrBase &other) const { return _storeP != other._storeP; }
    bool operator<(const FieldContainerPtrBase &other) const { return _storeP < other._storeP; }
    bool operator!(void) const { return _storeP == NULL; }
    explicit operator bool(void) const { return _storeP != NULL; }

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Which field of the holder refers through this pointer (properties
    /// of a geometry record it); InvalidParentEPos when none.
    UInt16 getParentFieldPos(void) const { return _uiParentEPos; }
    void setParentFieldPos(UInt16 pos) { _uiParentEPos = pos; }

  protected:
    /// Pointer to the container whose current-aspect copy is pObj.
    FieldContainerPtrBase(const FieldContainer *pObj, UInt32 containerSize)
        : _containerSize(containerSize), _uiParentEPos(InvalidParentEPos),
          _storeP(pObj != NULL ? reinterpret_cast<UInt8 *>(const_cast<FieldContainer *>(pObj)) -
                                     containerSize * Thread::getAspect()
                               : NULL)
    {
        if(pObj == NULL)
            _containerSize = 0;
    }

    FieldContainer *currentCPtr(void) const
    {
        return reinterpret_cast<FieldContainer *>(_storeP + _containerSize * Thread::getAspect());
    }

    void addRef(void) const;
    void subRef(void) const;
    void deleteContainers(void) const;
    void executeSync(UInt32 uiFromAspect, UInt32 uiToAspect, BitVector whichField) const;

    Int32 *refCountP(void) const { return reinterpret_cast<Int32 *>(_storeP - 8); }

    UInt32 _containerSize;
    UInt16 _uiParentEPos;
    UInt8 *_storeP;

    static LockPool *_pRefCountLock;

    friend class FieldContainer;
    friend class FieldContainerFactory;
    friend class ChangeList;
    friend bool initializeFieldContainerPtr(void);
    friend bool terminateFieldContainerPtr(void);
    friend void addRefCP(const FieldContainerPtrBase &objectP);
    friend void subRefCP(const FieldContainerPtrBase &objectP);
};

/// Pointer to any field container.
class FieldContainerPtr : public FieldContainerPtrBase
{
  public:
    typedef FieldContainer StoredObjectType;
    typedef FieldContainer ObjectType;
    typedef FieldContainerPtr Self;

    FieldContainerPtr(void) : FieldContainerPtrBase() {}
    FieldContainerPtr(const FieldContainerPtr &source) = default;
    FieldContainerPtr &operator=(const FieldContainerPtr &source) = default;

    explicit FieldContainerPtr(const FieldContainer &source);
    explicit FieldContainerPtr(const FieldContainer *source);
    FieldContainerPtr(const FieldContainer *source, UInt32 containerSize)
        : FieldContainerPtrBase(source, containerSize) {}

    FieldContainer *operator->(void) const { return currentCPtr(); }
    FieldContainer &operator*(void) const { return *currentCPtr(); }
    FieldContainer *getCPtr(void) const { return _storeP != NULL ? currentCPtr() : NULL; }

    /// Pointers of every type are dereferenced in the current aspect.
    void executeSync(UInt32 uiFromAspect, UInt32 uiToAspect, BitVector whichField) const
    {
        FieldContainerPtrBase::executeSync(uiFromAspect, uiToAspect, whichField);
    }

    static const FieldContainerPtr &null(void);

  protected:
    void setStore(UInt8 *storeP, UInt32 containerSize)
    {
        _storeP        = storeP;
        _containerSize = storeP != NULL ? containerSize : 0;
    }

    friend class FieldContainer;
};

/// The typed pointer of a container class: dereferences to ContainerT and
/// converts to the pointer types of every ancestor.
template <class BasePtrTypeT, class FieldContainerTypeT>
class FCPtr : public BasePtrTypeT
{
  public:
    typedef FieldContainerTypeT StoredObjectType;
    typedef FieldContainerTypeT ObjectType;
    typedef BasePtrTypeT        Inherited;
    typedef FCPtr<BasePtrTypeT, FieldContainerTypeT> Self;

    FCPtr(void) : Inherited() {}
    FCPtr(const FCPtr &source) = default;
    FCPtr &operator=(const FCPtr &source) = default;
    FCPtr(const NullFieldContainerPtr &) : Inherited() {}
    FCPtr &operator=(const NullFieldContainerPtr &)
    {
        this->_storeP        = NULL;
        this->_containerSize = 0;
        return *this;
    }

    explicit FCPtr(const FieldContainerTypeT &source)
        : Inherited(&source, source.getContainerSize()) {}
    explicit FCPtr(const FieldContainerTypeT *source)
        : Inherited(source, source != NULL ? source->getContainerSize() : 0) {}
    FCPtr(const FieldContainerTypeT *source, UInt32 containerSize)
        : Inherited(source, containerSize) {}

    FieldContainerTypeT *operator->(void) const
    {
        return static_cast<FieldContainerTypeT *>(this->currentCPtr());
    }
    FieldContainerTypeT &operator*(void) const { return *operator->(); }
    FieldContainerTypeT *getCPtr(void) const
    {
        return this->_storeP != NULL ? operator->() : NULL;
    }

    /// The same container as in, if it is a ContainerT; NullFC otherwise.
    template <class InTypeT>
    static FCPtr dcast(const InTypeT &in)
    {
        FCPtr result;
        if(in.getBaseCPtr() != NULL)
        {
            FieldContainer *obj = in.getAspectCPtr(Thread::getAspect());
            if(dynamic_cast<FieldContainerTypeT *>(obj) != NULL)
            {
                result._storeP        = reinterpret_cast<UInt8 *>(in.getBaseCPtr());
                result._containerSize = in.getContainerSize();
            }
        }
        return result;
    }
};

/// The null pointer; every pointer type converts from and compares to it.
class NullFieldContainerPtr : public FieldContainerPtr
{
  public:
    NullFieldContainerPtr(void) : FieldContainerPtr() {}
};

extern const NullFieldContainerPtr NullFC;
#define OSGNullFC OSG::NullFC

// --- reference counting and editing ------------------------------------------

void addRefCP(const FieldContainerPtrBase &objectP);
void subRefCP(const FieldContainerPtrBase &objectP);
void setRefdCP(FieldContainerPtrBase &objectP, const FieldContainerPtrBase &newObjectP);
void clearRefCP(FieldContainerPtrBase &objectP);

inline void addRef(const FieldContainerPtrBase &objectP) { addRefCP(objectP); }
inline void subRef(const FieldContainerPtrBase &objectP) { subRefCP(objectP); }

void beginEditCP(const FieldContainerPtr &objectP,
                 BitVector whichField = FieldBits::AllFields,
                 UInt32 origin        = ChangedOrigin::External);
void endEditCP(const FieldContainerPtr &objectP,
               BitVector whichField = FieldBits::AllFields,
               UInt32 origin        = ChangedOrigin::External);
void changedCP(const FieldContainerPtr &objectP,
               BitVector whichField = FieldBits::AllFields,
               UInt32 origin        = ChangedOrigin::External);
void endEditNotChangedCP(const FieldContainerPtr &objectP,
                         BitVector whichField = FieldBits::AllFields,
                         UInt32 origin        = ChangedOrigin::External);

/// Opens an edit for its lifetime.
class CPEditor
{
  public:
    CPEditor(const FieldContainerPtr &fc, BitVector mask = FieldBits::AllFields)
        : _fc(fc), _mask(mask)
    {
        beginEditCP(_fc, _mask);
    }
    ~CPEditor(void) { endEditCP(_fc, _mask); }

  private:
    FieldContainerPtr _fc;
    BitVector         _mask;
};

#define CPEdit(fc, mask) OSG::CPEditor CPEdit_##fc((fc), (mask))
#define CPEditAll(fc) OSG::CPEditor CPEdit_##fc((fc))

/// The current-aspect object, typed as the pointer's class.
template <class PtrT>
inline auto getCPtr(const PtrT &objectP) -> decltype(objectP.getCPtr())
{
    return objectP.getCPtr();
}

inline UInt32 getContainerId(const FieldContainerPtrBase &objectP)
{
    return objectP.getFieldContainerId();
}

inline Int32 getRefCount(const FieldContainerPtrBase &objectP) { return objectP.getRefCount(); }

template <class OutPtrT, class InPtrT>
inline OutPtrT dynamic_pointer_cast(const InPtrT &in) { return OutPtrT::dcast(in); }

template <class PtrT>
inline typename PtrT::StoredObjectType *get_pointer(const PtrT &objectP) { return objectP.getCPtr(); }

// --- stream output -------------------------------------------------------------

void writePtr(std::ostream &os, const Char8 *label, const FieldContainerPtrBase &ptr);

std::ostream &operator<<(std::ostream &os, const FieldContainerPtr &fc);

template <class BasePtrTypeT, class FieldContainerTypeT>
std::ostream &operator<<(std::ostream &os, const FCPtr<BasePtrTypeT, FieldContainerTypeT> &fc)
{
    writePtr(os, "FCPtr", fc);
    return os;
}

OSG_END_NAMESPACE

#endif
