#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

NurbsTrimmingLoop::NurbsTrimmingLoop(void) : Inherited()
{
}

NurbsTrimmingLoop::NurbsTrimmingLoop(const NurbsTrimmingLoop &source) : Inherited(source)
{
}

NurbsTrimmingLoop::~NurbsTrimmingLoop(void)
{
}

void NurbsTrimmingLoop::initMethod(void)
{
}

void NurbsTrimmingLoop::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NurbsTrimmingLoop::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsTrimmingLoop NI" << std::endl;
}

// The loop adds no GLU calls of its own: the surface begins and ends the
// trim, each curve gives its piece, and GLU closes and checks the contour.
Action::ResultE NurbsTrimmingLoop::trim(DrawActionBase *action, GLUnurbs *renderer)
{
    for(UInt32 i = 0; i < getTrimmingContour().size(); ++i)
    {
        NurbsCurvePtr curve = NurbsCurvePtr::dcast(getTrimmingContour()[i]);
        if(curve != NullFC)
            curve->trim(action, renderer);
    }
    return Action::Continue;
}

OSG_END_NAMESPACE
