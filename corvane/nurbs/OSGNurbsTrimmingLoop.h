#ifndef _OSGNURBSTRIMMINGLOOP_H_
#define _OSGNURBSTRIMMINGLOOP_H_

#include <OpenSG/OSGNurbsTrimmingLoopBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGGLU.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// The curves of one closed trimming contour of a NURBS surface.
///
/// A node core only so that it is stored and shared like other cores: it
/// registers no action handlers and draws nothing. A NurbsSurface lists it
/// in trimmingLoop and calls trim between gluBeginTrim and gluEndTrim; GLU
/// closes and checks the contour. Neither the loop nor the surface counts
/// references on what it lists: the holder of the scene keeps the curves
/// and loops alive.
class NurbsTrimmingLoop : public NurbsTrimmingLoopBase
{
  private:
    typedef NurbsTrimmingLoopBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Hands each NurbsCurve of trimmingContour, in order, to renderer
    /// through its own trim; other entries are passed over. Always
    /// Action::Continue.
    virtual Action::ResultE trim(DrawActionBase *action, GLUnurbs *renderer);

  protected:
    NurbsTrimmingLoop(void);
    /// Copies the fields; the factory clones the prototype through it.
    NurbsTrimmingLoop(const NurbsTrimmingLoop &source);
    virtual ~NurbsTrimmingLoop(void);

  private:
    friend class FieldContainer;
    friend class NurbsTrimmingLoopBase;

    static void initMethod(void);

    void operator=(const NurbsTrimmingLoop &source);
};

typedef NurbsTrimmingLoop *NurbsTrimmingLoopP;

OSG_END_NAMESPACE

#endif
