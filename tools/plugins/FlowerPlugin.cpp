// The sample plug-in of PrimitiveDrawer: a flower on a stem, drawn with
// plain OpenGL. Load it with the libName "<dir>/libcorvaneflower.so#flower"
// (or "corvaneflower#flower" where the library is on the search path).
//
// The flower stands on the origin of the core's coordinates, its head facing
// +z. Parameters (paramDic, name then value):
//
//   petals       number of petals, 3 to 64             default 7
//   radius       length of a petal                     default 1
//   stemHeight   height of the head's centre           default 1.5
//   petalColor   "r g b", each 0 to 1                  default 0.9 0.3 0.6
//   centerColor  "r g b"                               default 1 0.8 0.15
//   stemColor    "r g b"                               default 0.2 0.55 0.2
//
// Unknown names and values that don't parse are refused (setParam gives 0)
// and change nothing.
#include <OpenSG/OSGBaseTypes.h>

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace osg
{
class DrawActionBase;
}

namespace
{

const float Pi = 3.14159265f;

struct Flower
{
    int   petals     = 7;
    float radius     = 1.f;
    float stemHeight = 1.5f;
    float petal[3]   = {0.9f, 0.3f, 0.6f};
    float center[3]  = {1.f, 0.8f, 0.15f};
    float stem[3]    = {0.2f, 0.55f, 0.2f};
};

bool parseColor(const char *value, float *rgb)
{
    float c[3];
    int   used = 0;
    if(std::sscanf(value, "%f %f %f %n", &c[0], &c[1], &c[2], &used) != 3 || value[used] != 0)
        return false;
    for(float v : c)
        if(!(v >= 0.f && v <= 1.f))
            return false;
    std::copy(c, c + 3, rgb);
    return true;
}

bool parseFloat(const char *value, float low, float high, float &out)
{
    char *end = NULL;
    float v   = std::strtof(value, &end);
    if(end == value || *end != 0 || !(v >= low && v <= high))
        return false;
    out = v;
    return true;
}

void color(const float *rgb, float scale, float whiten)
{
    glColor3f(rgb[0] * scale + (1.f - rgb[0] * scale) * whiten,
              rgb[1] * scale + (1.f - rgb[1] * scale) * whiten,
              rgb[2] * scale + (1.f - rgb[2] * scale) * whiten);
}

/// A leaf-shaped blade from base along angle: darker at the base, lighter
/// at the tip, widest in the middle.
void blade(float bx, float by, float z, float angle, float length, float halfWidth,
           const float *rgb)
{
    const float ux = std::cos(angle), uy = std::sin(angle);
    const float vx = -uy, vy = ux;
    const int   steps = 12;
    glBegin(GL_TRIANGLE_STRIP);
    for(int i = 0; i <= steps; ++i)
    {
        const float s = float(i) / steps;
        const float w = halfWidth * std::pow(std::sin(Pi * s), 0.7f);
        const float x = bx + ux * length * s, y = by + uy * length * s;
        color(rgb, 0.6f + 0.4f * s, 0.35f * s * s);
        glVertex3f(x + vx * w, y + vy * w, z);
        glVertex3f(x - vx * w, y - vy * w, z);
    }
    glEnd();
}

void disc(float cx, float cy, float z, float radius, const float *rgb)
{
    const int segments = 32;
    glBegin(GL_TRIANGLE_FAN);
    color(rgb, 1.f, 0.3f);
    glVertex3f(cx, cy, z);
    color(rgb, 0.7f, 0.f);
    for(int i = 0; i <= segments; ++i)
    {
        const float a = 2.f * Pi * i / segments;
        glVertex3f(cx + radius * std::cos(a), cy + radius * std::sin(a), z);
    }
    glEnd();
}

Flower defaults;

} // namespace

extern "C" {

void *flower_initialize(void)
{
    return new Flower;
}

void flower_shutdown(void *context)
{
    delete static_cast<Flower *>(context);
}

int flower_setParam(void *context, const char *name, const char *value)
{
    Flower *f = static_cast<Flower *>(context);
    if(f == NULL || name == NULL || value == NULL)
        return 0;

    if(std::strcmp(name, "petals") == 0)
    {
        float n;
        if(!parseFloat(value, 3.f, 64.f, n) || n != std::floor(n))
            return 0;
        f->petals = int(n);
        return 1;
    }
    if(std::strcmp(name, "radius") == 0)
        return parseFloat(value, 1e-3f, 1e3f, f->radius);
    if(std::strcmp(name, "stemHeight") == 0)
        return parseFloat(value, 0.f, 1e3f, f->stemHeight);
    if(std::strcmp(name, "petalColor") == 0)
        return parseColor(value, f->petal);
    if(std::strcmp(name, "centerColor") == 0)
        return parseColor(value, f->center);
    if(std::strcmp(name, "stemColor") == 0)
        return parseColor(value, f->stem);
    return 0;
}

void flower_getBBox(void *context, osg::Real32 *min, osg::Real32 *max)
{
    const Flower *f = context != NULL ? static_cast<Flower *>(context) : &defaults;
    min[0] = -f->radius;
    min[1] = 0.f;
    min[2] = 0.f;
    max[0] = f->radius;
    max[1] = f->stemHeight + f->radius;
    max[2] = 0.04f * f->radius;
}

// Draws in the core's coordinates with the state the material has set up;
// lighting and texturing are switched off for the flat colours and restored
// afterwards.
void flower_drawPrim(void *context, osg::DrawActionBase *)
{
    const Flower *f = context != NULL ? static_cast<Flower *>(context) : &defaults;
    const float   r = f->radius, h = f->stemHeight;

    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_POLYGON_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_CULL_FACE);
    glShadeModel(GL_SMOOTH);

    // the stem and two leaves behind the head
    const float stemWidth = 0.04f * r;
    glBegin(GL_QUADS);
    color(f->stem, 0.8f, 0.f);
    glVertex3f(-stemWidth, 0.f, 0.f);
    glVertex3f(stemWidth, 0.f, 0.f);
    color(f->stem, 1.f, 0.f);
    glVertex3f(stemWidth, h, 0.f);
    glVertex3f(-stemWidth, h, 0.f);
    glEnd();
    blade(0.f, 0.3f * h, 0.001f * r, Pi * 0.2f, 0.5f * r, 0.12f * r, f->stem);
    blade(0.f, 0.5f * h, 0.001f * r, Pi * 0.8f, 0.45f * r, 0.11f * r, f->stem);

    // petals round the head, each a little in front of the one before, so
    // their overlaps don't fight in depth
    const float halfWidth = r * std::min(0.42f, 1.3f * std::sin(Pi / f->petals));
    for(int i = 0; i < f->petals; ++i)
        blade(0.f, h, (0.004f + 0.0005f * i) * r, Pi / 2 + 2.f * Pi * i / f->petals, r,
              halfWidth, f->petal);
    disc(0.f, h, 0.02f * r, 0.22f * r, f->center);

    glPopAttrib();
}

} // extern "C"
