#include <OpenSG/OSGPolygonForeground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

PolygonForeground::PolygonForeground(void) : Inherited()
{
}

PolygonForeground::PolygonForeground(const PolygonForeground &source) : Inherited(source)
{
}

PolygonForeground::~PolygonForeground(void)
{
}

void PolygonForeground::initMethod(void)
{
}

void PolygonForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PolygonForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PolygonForeground NI" << std::endl;
}

Real32 PolygonForeground::mapCoordinate(Real32 value, Real32 max, bool norm) const
{
    if(value >= 0.f)
        return norm ? value * max : value;

    // Negative values count back from the far edge, -1 being the edge.
    Real32 v = value + 1.f;

    if(norm)
        v *= max;

    return max + v;
}

void PolygonForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || getPositions().empty() || port == NULL)
        return;

    const Int32 pw = port->getPixelWidth();
    const Int32 ph = port->getPixelHeight();

    if(pw <= 0 || ph <= 0)
        return;

    if(getPositions().size() != getTexCoords().size())
    {
        FWARNING(("PolygonForeground::draw: positions and texcoords have different sizes "
                  "(%d vs. %d)!\n",
                  Int32(getPositions().size()), Int32(getTexCoords().size())));
        return;
    }

    MaterialPtr mat = getMaterial();

    if(mat == NullFC)
    {
        FWARNING(("PolygonForeground::draw: no material!\n"));
        return;
    }

    glPushAttrib(GL_ALL_ATTRIB_BITS);

    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();

    Real32 aspectX = 1.f;

    if(getAspectHeight() != 0 && getAspectWidth() != 0)
    {
        aspectX = (Real32(ph) / getAspectHeight()) / (Real32(pw) / getAspectWidth());
    }

    const Real32 s = getScale() > 0.f ? getScale() : 1.f;

    // Scaling in clip space zooms around the viewport's centre.
    glScalef(s, s, 1.f);
    glScalef(aspectX, 1.f, 1.f);
    glOrtho(0, pw, 0, ph, 0, 1);

    glMatrixMode(GL_MODELVIEW);

    const Real32 w = Real32(pw);
    const Real32 h = Real32(ph);

    State *previous = NULL;

    for(UInt32 pass = 0; pass < mat->getNPasses(); ++pass)
    {
        StatePtr statePtr = mat->getState(pass);
        State   *state    = statePtr.getCPtr();

        if(state == NULL)
            continue;

        if(previous == NULL)
            state->activate(action);
        else
            state->changeFrom(action, previous);

        previous = state;

        glBegin(GL_POLYGON);

        for(UInt32 i = 0; i < getPositions().size(); ++i)
        {
            glTexCoord3fv(getTexCoords(i).getValues());
            glVertex2f(mapCoordinate(getPositions(i)[0], w, getNormalizedX()),
                       mapCoordinate(getPositions(i)[1], h, getNormalizedY()));
        }

        glEnd();
    }

    if(previous != NULL)
        previous->deactivate(action);

    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();

    glPopAttrib();
}

OSG_END_NAMESPACE
