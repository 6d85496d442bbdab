/// A window on a GL context that the application made and keeps current
/// itself (a GUI toolkit's widget, say): activate, deactivate and swap do
/// nothing, so render() works in whatever context is current.
#ifndef _OSGPASSIVEWINDOW_H_
#define _OSGPASSIVEWINDOW_H_

#include <OpenSG/OSGPassiveWindowBase.h>

OSG_BEGIN_NAMESPACE

class PassiveWindow : public PassiveWindowBase
{
  private:
    typedef PassiveWindowBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Sets up the GL state of the current context (setupGL); call it once
    /// with the application's context current.
    virtual void init(void);
    virtual void activate(void);
    virtual void deactivate(void);
    virtual void swap(void);

  protected:
    PassiveWindow(void);
    PassiveWindow(const PassiveWindow &source);
    virtual ~PassiveWindow(void);

  private:
    friend class FieldContainer;
    friend class PassiveWindowBase;

    static void initMethod(void);

    void operator=(const PassiveWindow &source);
};

typedef PassiveWindow *PassiveWindowP;

OSG_END_NAMESPACE

#endif
