/// Leaves the buffers as they are, to draw over an existing image.
#ifndef _OSGPASSIVEBACKGROUND_H_
#define _OSGPASSIVEBACKGROUND_H_

#include <OpenSG/OSGPassiveBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class PassiveBackground : public PassiveBackgroundBase
{
  private:
    typedef PassiveBackgroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Nothing.
    virtual void clear(DrawActionBase *action, Viewport *port);

  protected:
    PassiveBackground(void);
    PassiveBackground(const PassiveBackground &source);
    virtual ~PassiveBackground(void);

  private:
    friend class FieldContainer;
    friend class PassiveBackgroundBase;

    static void initMethod(void);

    void operator=(const PassiveBackground &source);
};

typedef PassiveBackground *PassiveBackgroundP;

OSG_END_NAMESPACE

#endif
