/// A core that draws something. It has no fields of its own; it names the
/// statistics every drawable reports while it is drawn.
#ifndef _OSGDRAWABLE_H_
#define _OSGDRAWABLE_H_

#include <OpenSG/OSGDrawableBase.h>
#include <OpenSG/OSGStatElemDesc.h>
#include <OpenSG/OSGStatIntElem.h>
#include <OpenSG/OSGStatIntOnceElem.h>

OSG_BEGIN_NAMESPACE

class Drawable : public DrawableBase
{
  private:
    typedef DrawableBase Inherited;

  public:
    static StatElemDesc<StatIntElem>     statNTriangles;
    static StatElemDesc<StatIntElem>     statNLines;
    static StatElemDesc<StatIntElem>     statNPoints;
    static StatElemDesc<StatIntElem>     statNVertices;
    static StatElemDesc<StatIntElem>     statNPrimitives;
    static StatElemDesc<StatIntOnceElem> statNGeoBytes;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Drawable(void);
    Drawable(const Drawable &source);
    virtual ~Drawable(void);

  private:
    friend class FieldContainer;
    friend class DrawableBase;

    static void initMethod(void);

    void operator=(const Drawable &source);
};

typedef Drawable *DrawableP;

OSG_END_NAMESPACE

#endif
