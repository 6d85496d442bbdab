/// Data that hangs off attachment containers (nodes, cores, images, ...).
#ifndef _OSGATTACHMENT_H_
#define _OSGATTACHMENT_H_

#include <OpenSG/OSGAttachmentBase.h>

OSG_BEGIN_NAMESPACE

class Attachment : public AttachmentBase
{
  private:
    typedef AttachmentBase Inherited;

  public:
    MFFieldContainerPtr &getParents(void) { return _mfParents; }
    const MFFieldContainerPtr &getParents(void) const { return _mfParents; }
    MFFieldContainerPtr *getMFParents(void) { return &_mfParents; }

    void addParent(FieldContainerPtr parent);
    void subParent(FieldContainerPtr parent);
    Int32 findParent(FieldContainerPtr parent);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Attachment(void);
    /// Copies internal but not the parents: a copy is attached nowhere.
    Attachment(const Attachment &source);
    virtual ~Attachment(void);

  private:
    friend class FieldContainer;
    friend class AttachmentBase;

    static void initMethod(void);

    void operator=(const Attachment &source);
};

typedef Attachment *AttachmentP;

std::ostream &operator<<(std::ostream &os, const AttachmentPtr &fc);

OSG_END_NAMESPACE

#endif
