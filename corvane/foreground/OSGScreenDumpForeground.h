/// A grab foreground that writes one frame per queued file name as PNG.
#ifndef _OSGSCREENDUMPFOREGROUND_H_
#define _OSGSCREENDUMPFOREGROUND_H_

#include <OpenSG/OSGScreenDumpForegroundBase.h>

OSG_BEGIN_NAMESPACE

class ScreenDumpForeground : public ScreenDumpForegroundBase
{
  private:
    typedef ScreenDumpForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ScreenDumpForeground(void);
    ScreenDumpForeground(const ScreenDumpForeground &source);
    virtual ~ScreenDumpForeground(void);

  private:
    friend class FieldContainer;
    friend class ScreenDumpForegroundBase;

    static void initMethod(void);

    void operator=(const ScreenDumpForeground &source);
};

typedef ScreenDumpForeground *ScreenDumpForegroundP;

OSG_END_NAMESPACE

#endif
