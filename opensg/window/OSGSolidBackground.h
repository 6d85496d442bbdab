/// Clears to fixed values: colour (with alpha) if clearColor, depth if
/// clearDepth, stencil if clearStencilBit is not negative, in one glClear.
/// The scissor of a partial viewport limits it to the viewport.
#ifndef _OSGSOLIDBACKGROUND_H_
#define _OSGSOLIDBACKGROUND_H_

#include <OpenSG/OSGSolidBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class SolidBackground : public SolidBackgroundBase
{
  private:
    typedef SolidBackgroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void clear(DrawActionBase *action, Viewport *port);

  protected:
    SolidBackground(void);
    SolidBackground(const SolidBackground &source);
    virtual ~SolidBackground(void);

  private:
    friend class FieldContainer;
    friend class SolidBackgroundBase;

    static void initMethod(void);

    void operator=(const SolidBackground &source);
};

typedef SolidBackground *SolidBackgroundP;

OSG_END_NAMESPACE

#endif
