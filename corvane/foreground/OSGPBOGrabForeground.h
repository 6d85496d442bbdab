/// A grab foreground that reads back through a ring of pixel buffer objects.
#ifndef _OSGPBOGRABFOREGROUND_H_
#define _OSGPBOGRABFOREGROUND_H_

#include <OpenSG/OSGPBOGrabForegroundBase.h>

OSG_BEGIN_NAMESPACE

class PBOGrabForeground : public PBOGrabForegroundBase
{
  private:
    typedef PBOGrabForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    PBOGrabForeground(void);
    PBOGrabForeground(const PBOGrabForeground &source);
    virtual ~PBOGrabForeground(void);

  private:
    friend class FieldContainer;
    friend class PBOGrabForegroundBase;

    static void initMethod(void);

    void operator=(const PBOGrabForeground &source);
};

typedef PBOGrabForeground *PBOGrabForegroundP;

OSG_END_NAMESPACE

#endif
