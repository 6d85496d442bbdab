#include <OpenSG/OSGGradientBackground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

GradientBackground::GradientBackground(void) : Inherited()
{
}

GradientBackground::GradientBackground(const GradientBackground &source) : Inherited(source)
{
}

GradientBackground::~GradientBackground(void)
{
}

void GradientBackground::initMethod(void)
{
}

void GradientBackground::addLine(Color3f color, Real32 position)
{
    getMFColor()->push_back(color);
    getMFPosition()->push_back(position);
}

void GradientBackground::clearLines(void)
{
    getMFColor()->clear();
    getMFPosition()->clear();
}

void GradientBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void GradientBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump GradientBackground NI" << std::endl;
}

void GradientBackground::clear(DrawActionBase *, Viewport *)
{
    const MFColor3f &colors    = *getMFColor();
    const MFReal32  &positions = *getMFPosition();

    glClearDepth(1);

    GLbitfield depthStencil = GL_DEPTH_BUFFER_BIT;
    if(getClearStencilBit() >= 0)
    {
        glClearStencil(getClearStencilBit());
        depthStencil |= GL_STENCIL_BUFFER_BIT;
    }

    if(positions.size() < 2)
    {
        Color3f c = colors.size() == 1 ? colors[0] : Color3f(0, 0, 0);
        glClearColor(c[0], c[1], c[2], 1);
        glClear(GL_COLOR_BUFFER_BIT | depthStencil);
        return;
    }

    glPushAttrib(GL_POLYGON_BIT | GL_DEPTH_BUFFER_BIT | GL_LIGHTING_BIT);
    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_COLOR_MATERIAL);

    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, 1, 0, 1, 0, 1);

    // a pair of vertices across the viewport at position p
    const bool vertical = getStyle() == VERTICAL;
    auto       line     = [vertical](Real32 p) {
        if(vertical)
        {
            glVertex2f(0, p);
            glVertex2f(1, p);
        }
        else
        {
            glVertex2f(p, 0);
            glVertex2f(p, 1);
        }
    };

    glShadeModel(GL_SMOOTH);
    glBegin(GL_QUAD_STRIP);
    if(getStyle() == VERTICAL || getStyle() == HORIZONTAL)
    {
        // lines beyond the colour list repeat black
        if(positions[0] > 0)
        {
            glColor3f(0, 0, 0);
            line(0);
        }
        for(UInt32 i = 0; i < positions.size(); ++i)
        {
            Color3f c = i < colors.size() ? colors[i] : Color3f(0, 0, 0);
            glColor3f(c[0], c[1], c[2]);
            line(positions[i]);
        }
        if(positions[positions.size() - 1] < 1)
        {
            glColor3f(0, 0, 0);
            line(1);
        }
    }
    else
    {
        FWARNING(("GradientBackground: SFStyle has invalid value [%u].\n", getStyle()));
    }
    glEnd();

    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();

    glClear(depthStencil);
}

OSG_END_NAMESPACE
