/// Fills the viewport with smooth colour bands: each line of the list has
/// a colour and a position (fraction of the viewport from the bottom, or
/// from the left for HORIZONTAL; ascending). Below the first and above the
/// last line it is black; with fewer than two lines it clears to the only
/// colour (or black). Depth (and stencil with clearStencilBit >= 0) are
/// cleared afterwards.
#ifndef _OSGGRADIENTBACKGROUND_H_
#define _OSGGRADIENTBACKGROUND_H_

#include <OpenSG/OSGGradientBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class GradientBackground : public GradientBackgroundBase
{
  private:
    typedef GradientBackgroundBase Inherited;

  public:
    enum
    {
        VERTICAL   = 1,
        HORIZONTAL = 2
    };

    /// Appends a line to both lists.
    void addLine(Color3f color, Real32 position);
    void clearLines(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void clear(DrawActionBase *action, Viewport *port);

  protected:
    GradientBackground(void);
    GradientBackground(const GradientBackground &source);
    virtual ~GradientBackground(void);

  private:
    friend class FieldContainer;
    friend class GradientBackgroundBase;

    static void initMethod(void);

    void operator=(const GradientBackground &source);
};

typedef GradientBackground *GradientBackgroundP;

OSG_END_NAMESPACE

#endif
