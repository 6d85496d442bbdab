// A plug-in for the PrimitiveDrawer tests, built in variants (see
// CMakeLists.txt): PROBE_BASE names its symbols, PROBE_NO_INITIALIZE leaves
// out _initialize and _shutdown, PROBE_NULL_CONTEXT makes _initialize return
// NULL, PROBE_NO_BBOX leaves out _getBBox. It draws a unit quad round the
// origin in the colour of its "color" parameter.
#include "ProbeState.h"

#include <GL/gl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The entry points have exactly the types the core calls them through.
namespace osg
{
class DrawActionBase;
}

#define PROBE_JOIN2(a, b) a##_##b
#define PROBE_JOIN(a, b) PROBE_JOIN2(a, b)
#define PROBE_FN(name) PROBE_JOIN(PROBE_BASE, name)

namespace
{

ProbeState *reset(ProbeState *s)
{
    std::memset(s, 0, sizeof(ProbeState));
    s->color[0] = s->color[1] = s->color[2] = 1.f;
    s->min[0] = s->min[1] = -0.5f;
    s->max[0] = s->max[1] = 0.5f;
    return s;
}

[[maybe_unused]] ProbeState *fresh(void)
{
    return reset(static_cast<ProbeState *>(std::malloc(sizeof(ProbeState))));
}

// what a probe without a context uses; it goes with the library
ProbeState *shared(void)
{
    static ProbeState s;
    static ProbeState *once = reset(&s);
    return once;
}

ProbeState *state(void *context)
{
    return context != NULL ? static_cast<ProbeState *>(context) : shared();
}

bool three(const char *value, float *out)
{
    int used = 0;
    return std::sscanf(value, "%f %f %f %n", &out[0], &out[1], &out[2], &used) == 3 &&
           value[used] == 0;
}

} // namespace

extern "C" {

#ifndef PROBE_NO_INITIALIZE
void *PROBE_FN(initialize)(void)
{
#ifdef PROBE_NULL_CONTEXT
    return NULL;
#else
    return fresh();
#endif
}

void PROBE_FN(shutdown)(void *context)
{
    if(context != NULL)
        static_cast<ProbeState *>(context)->shutdowns++;
}
#endif

void PROBE_FN(drawPrim)(void *context, osg::DrawActionBase *action)
{
    ProbeState *s = state(context);
    s->draws++;
    s->lastAction = action;

    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glColor3f(s->color[0], s->color[1], s->color[2]);
    glBegin(GL_QUADS);
    glVertex3f(-0.5f, -0.5f, 0.f);
    glVertex3f(0.5f, -0.5f, 0.f);
    glVertex3f(0.5f, 0.5f, 0.f);
    glVertex3f(-0.5f, 0.5f, 0.f);
    glEnd();
    glPopAttrib();
}

#ifndef PROBE_NO_BBOX
void PROBE_FN(getBBox)(void *context, float *min, float *max)
{
    ProbeState *s = state(context);
    s->boxes++;
    std::memcpy(min, s->min, sizeof(s->min));
    std::memcpy(max, s->max, sizeof(s->max));
}
#endif

int PROBE_FN(setParam)(void *context, const char *name, const char *value)
{
    ProbeState *s = state(context);
    if(std::strcmp(name, "reject") == 0)
        return 0;
    if(std::strcmp(name, "color") == 0 && !three(value, s->color))
        return 0;
    if(std::strcmp(name, "min") == 0 && !three(value, s->min))
        return 0;
    if(std::strcmp(name, "max") == 0 && !three(value, s->max))
        return 0;
    size_t used = std::strlen(s->calls);
    std::snprintf(s->calls + used, sizeof(s->calls) - used, "%s=%s;", name, value);
    return 1;
}

} // extern "C"
