/// A container that carries attachments; the base of nodes and cores.
#ifndef _OSGATTACHMENTCONTAINER_H_
#define _OSGATTACHMENTCONTAINER_H_

#include <OpenSG/OSGAttachmentContainerBase.h>
#include <OpenSG/OSGAttachment.h>

OSG_BEGIN_NAMESPACE

class AttachmentContainer : public AttachmentContainerBase
{
  private:
    typedef AttachmentContainerBase Inherited;

  public:
    /// Attaches under (group id << 16) | binding, replacing what was there.
    void addAttachment(const AttachmentPtr &fieldContainerP, UInt16 binding = 0);
    void subAttachment(const AttachmentPtr &fieldContainerP, UInt16 binding = 0);

    AttachmentPtr findAttachment(UInt32 groupId, UInt16 binding = 0);
    AttachmentPtr findAttachment(const FieldContainerType &type, UInt16 binding = 0);

    AttachmentMap &getAttachments(void) { return _sfAttachments.getValue(); }

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    AttachmentContainer(void);
    /// A copy starts without attachments; onCreate re-attaches the source's.
    AttachmentContainer(const AttachmentContainer &source);
    virtual ~AttachmentContainer(void);

    void onCreate(const AttachmentContainer *source = NULL);
    virtual void onDestroy(void);

    AttachmentContainerPtr getPtr(void);

  private:
    friend class FieldContainer;
    friend class AttachmentContainerBase;

    static void initMethod(void);

    void operator=(const AttachmentContainer &source);
};

typedef AttachmentContainer *AttachmentContainerP;

std::ostream &operator<<(std::ostream &os, const AttachmentContainerPtr &fc);

OSG_END_NAMESPACE

#endif
