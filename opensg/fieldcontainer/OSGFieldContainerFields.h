/// Field traits of container pointers: ids on the wire, addresses as text.
#ifndef _OSGFIELDCONTAINERFIELDS_H_
#define _OSGFIELDCONTAINERFIELDS_H_

#include <OpenSG/OSGBaseFields.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldContainerFactory.h>

#include <cstdio>

OSG_BEGIN_NAMESPACE

template <>
struct FieldDataTraits<FieldContainerPtr> : public FieldTraits
{
    static DataType _type;

    enum { StringConvertable = ToStringConvertable };
    enum { bHasParent        = 0x00 };

    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFFieldContainerPtr"; }
    static const Char8 *getMName(void) { return "MFFieldContainerPtr"; }
    static FieldContainerPtr getDefault(void) { return FieldContainerPtr(); }

    /// The address of the aspect-0 copy.
    static void putToString(const FieldContainerPtr &in, std::string &out)
    {
        char buf[32];
        snprintf(buf, sizeof(buf), "%p", static_cast<void *>(in.getBaseCPtr()));
        out.assign(buf);
    }

    static UInt32 getBinSize(const FieldContainerPtr &) { return sizeof(UInt32); }
    static UInt32 getBinSize(const FieldContainerPtr *, UInt32 n) { return sizeof(UInt32) * n; }

    /// The container id, 0 for NullFC.
    static void copyToBin(BinaryDataHandler &mem, const FieldContainerPtr &p)
    {
        UInt32 id = (p != NullFC) ? p.getFieldContainerId() : 0;
        mem.putValue(id);
    }
    static void copyToBin(BinaryDataHandler &mem, const FieldContainerPtr *p, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyToBin(mem, p[i]);
    }

    /// Id 0 and ids the factory does not know give NullFC.
    static void copyFromBin(BinaryDataHandler &mem, FieldContainerPtr &p)
    {
        UInt32 id = 0;
        mem.getValue(id);
        if(id != 0)
            p = FieldContainerFactory::the()->getMappedContainer(id);
        else
            p = NullFC;
    }
    static void copyFromBin(BinaryDataHandler &mem, FieldContainerPtr *p, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyFromBin(mem, p[i]);
    }
};

/// Traits of typed container pointers: the binary form of FieldContainerPtr;
/// an id naming a container of another type reads back as NullFC.
template <class PtrT, bool bHasParent>
struct FieldTraitsRecurseMapper;

template <class PtrT>
struct FieldTraitsRecurseMapper<PtrT, true> : public FieldTraits
{
    typedef FieldDataTraits<FieldContainerPtr> Mapped;

    static PtrT getDefault(void) { return PtrT(); }

    static void putToString(const PtrT &in, std::string &out) { Mapped::putToString(in, out); }

    static UInt32 getBinSize(const PtrT &) { return sizeof(UInt32); }
    static UInt32 getBinSize(const PtrT *, UInt32 n) { return sizeof(UInt32) * n; }

    static void copyToBin(BinaryDataHandler &mem, const PtrT &p) { Mapped::copyToBin(mem, p); }
    static void copyToBin(BinaryDataHandler &mem, const PtrT *p, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            Mapped::copyToBin(mem, p[i]);
    }
    static void copyFromBin(BinaryDataHandler &mem, PtrT &p)
    {
        FieldContainerPtr fc;
        Mapped::copyFromBin(mem, fc);
        p = PtrT::dcast(fc);
    }
    static void copyFromBin(BinaryDataHandler &mem, PtrT *p, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyFromBin(mem, p[i]);
    }
};

typedef SField<FieldContainerPtr> SFFieldContainerPtr;
typedef MField<FieldContainerPtr> MFFieldContainerPtr;

template <> const FieldType SField<FieldContainerPtr, 0>::_fieldType;
template <> const FieldType MField<FieldContainerPtr, 0>::_fieldType;

OSG_END_NAMESPACE

#endif
