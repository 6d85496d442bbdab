/// A background that clears the viewport and draws a textured sky sphere around the viewer.
#ifndef _OSGSKYDOMEBACKGROUND_H_
#define _OSGSKYDOMEBACKGROUND_H_

#include <OpenSG/OSGSkydomeBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class SkydomeBackground : public SkydomeBackgroundBase
{
  private:
    typedef SkydomeBackgroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    SkydomeBackground(void);
    SkydomeBackground(const SkydomeBackground &source);
    virtual ~SkydomeBackground(void);

  private:
    friend class FieldContainer;
    friend class SkydomeBackgroundBase;

    static void initMethod(void);

    void operator=(const SkydomeBackground &source);
};

typedef SkydomeBackground *SkydomeBackgroundP;

OSG_END_NAMESPACE

#endif
