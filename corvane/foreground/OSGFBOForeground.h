/// A foreground that lets another foreground draw into textures through a framebuffer object.
#ifndef _OSGFBOFOREGROUND_H_
#define _OSGFBOFOREGROUND_H_

#include <OpenSG/OSGFBOForegroundBase.h>

OSG_BEGIN_NAMESPACE

class FBOForeground : public FBOForegroundBase
{
  private:
    typedef FBOForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    FBOForeground(void);
    FBOForeground(const FBOForeground &source);
    virtual ~FBOForeground(void);

  private:
    friend class FieldContainer;
    friend class FBOForegroundBase;

    static void initMethod(void);

    void operator=(const FBOForeground &source);
};

typedef FBOForeground *FBOForegroundP;

OSG_END_NAMESPACE

#endif
