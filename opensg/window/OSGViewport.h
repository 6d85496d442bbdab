/// A rectangle of a window that shows a scene (root) through a camera over
/// a background, with foregrounds drawn on top.
///
/// Each edge is a pixel coordinate when it is greater than 1 and a fraction
/// of the parent window's size otherwise (right and top one pixel less, so
/// that neighbouring viewports don't overlap): the default 0, 1, 0, 1 covers
/// the whole window, 0, 99, 0, 49 is a 100 x 50 pixel rectangle in the lower
/// left corner. Fractions need the parent window.
#ifndef _OSGVIEWPORT_H_
#define _OSGVIEWPORT_H_

#include <OpenSG/OSGViewportBase.h>
#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

class DrawAction;
class RenderActionBase;

class Viewport : public ViewportBase
{
  private:
    typedef ViewportBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- pixel rectangle ---------------------------------------------------------

    /// A fraction without a parent window warns and gives 0.
    virtual Int32 getPixelLeft(void) const;
    virtual Int32 getPixelRight(void) const;
    virtual Int32 getPixelBottom(void) const;
    virtual Int32 getPixelTop(void) const;
    virtual Int32 getPixelWidth(void) const;
    virtual Int32 getPixelHeight(void) const;

    /// glViewport over the pixel rectangle; glScissor around it too unless
    /// it covers the whole window.
    virtual void activateSize(void);
    virtual void activate(void);
    virtual void deactivate(void);

    /// Sets up camera and background itself, then draws the scene and the
    /// foregrounds with the immediate-mode action.
    virtual void draw(DrawAction *action);
    /// activate, hand camera, background, viewport and traversal mask to the
    /// action, apply it to root (its start loads the projection and clears),
    /// draw the foregrounds, deactivate.
    virtual void render(RenderActionBase *action);

    /// The rectangle is the whole parent window (false without one).
    bool isFullWindow(void) const;

    /// Sets the edges without an edit. Note the order.
    void setSize(Real32 left, Real32 bottom, Real32 right, Real32 top);

    /// Appends and adds a reference.
    void addForeground(const ForegroundPtr &fg);
    /// Releases each foreground's reference and empties the list.
    void clearForegrounds(void);

  protected:
    Viewport(void);
    Viewport(const Viewport &source);
    virtual ~Viewport(void);

  private:
    friend class FieldContainer;
    friend class ViewportBase;

    static void initMethod(void);

    void operator=(const Viewport &source);
};

typedef Viewport *ViewportP;

OSG_END_NAMESPACE

#endif
