/// One polygon drawn with a material over the viewport, e.g. a texture
/// shown in a corner:
///
///     fg->setMaterial(matWithTexture);
///     fg->getPositions().push_back(Pnt2f(0.75f, 0.f));   // normalised
///     fg->getTexCoords().push_back(Vec3f(0, 0, 0));  ... four corners
///
/// Coordinates per axis: with normalizedX / normalizedY a value is a
/// fraction of the viewport's pixel width / height, else a pixel offset
/// from the viewport's left / bottom edge. A negative value counts from the
/// right / top edge: -1 (pixels) is the edge itself, and a normalised v < 0
/// lands at (v + 2) times the size. A pixel edge at x covers the pixels
/// whose centres lie right of x, so (10, 5) .. (30, 20) covers columns
/// 10..29 and rows 5..19 of the viewport exactly.
#ifndef _OSGPOLYGONFOREGROUND_H_
#define _OSGPOLYGONFOREGROUND_H_

#include <OpenSG/OSGPolygonForegroundBase.h>

OSG_BEGIN_NAMESPACE

class PolygonForeground : public PolygonForegroundBase
{
  private:
    typedef PolygonForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port);

  protected:
    PolygonForeground(void);
    PolygonForeground(const PolygonForeground &source);
    virtual ~PolygonForeground(void);

    /// The pixel coordinate of value on an axis of size max.
    Real32 mapCoordinate(Real32 value, Real32 max, bool norm) const;

  private:
    friend class FieldContainer;
    friend class PolygonForegroundBase;

    static void initMethod(void);

    void operator=(const PolygonForeground &source);
};

typedef PolygonForeground *PolygonForegroundP;

OSG_END_NAMESPACE

#endif
