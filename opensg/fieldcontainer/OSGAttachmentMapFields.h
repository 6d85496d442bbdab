/// The attachment map field: (group id << 16 | binding) -> attachment.
#ifndef _OSGATTACHMENTMAPFIELDS_H_
#define _OSGATTACHMENTMAPFIELDS_H_

#include <OpenSG/OSGAttachmentFields.h>

#include <map>

OSG_BEGIN_NAMESPACE

typedef std::map<UInt32, AttachmentPtr> AttachmentMap;

/// Only public attachments go over the wire: count, then binding and id.
template <>
struct FieldDataTraits<AttachmentMap> : public FieldTraits
{
    static DataType _type;

    enum { StringConvertable = 0x00 };
    enum { bHasParent        = 0x00 };

    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFAttachmentMap"; }
    static const Char8 *getMName(void) { return "MFAttachmentMap"; }
    static AttachmentMap getDefault(void) { return AttachmentMap(); }

    static UInt32 getBinSize(const AttachmentMap &map);
    static UInt32 getBinSize(const AttachmentMap *map, UInt32 n);
    static void copyToBin(BinaryDataHandler &mem, const AttachmentMap &map);
    static void copyToBin(BinaryDataHandler &mem, const AttachmentMap *map, UInt32 n);
    static void copyFromBin(BinaryDataHandler &mem, AttachmentMap &map);
    static void copyFromBin(BinaryDataHandler &mem, AttachmentMap *map, UInt32 n);
};

typedef SField<AttachmentMap> SFAttachmentMap;

template <> const FieldType SField<AttachmentMap, 0>::_fieldType;

OSG_END_NAMESPACE

#endif
