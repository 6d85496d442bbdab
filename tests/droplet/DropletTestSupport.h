// What the droplet tests share: a window whose context is current for GL
// work outside Window::render, the droplet utilities pointed at it, a wet
// plane, read-back of textures, and the simulation's formulas on the CPU.
#ifndef _DROPLETTESTSUPPORT_H_
#define _DROPLETTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/DropletFlow.h>
#include <OpenSG/DropletPlacer.h>
#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGReal16.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include <cmath>
#include <vector>

namespace droplettest
{

using namespace osg;
using namespace wintest;

/// The texels of a map, RGBA floats, bottom row first.
struct Map
{
    int                w = 0, h = 0;
    std::vector<Vec4f> t;

    Vec4f       &at(int x, int y) { return t[y * w + x]; }
    const Vec4f &at(int x, int y) const { return t[y * w + x]; }

    /// With the wrap of the simulation's textures (repeat).
    const Vec4f &wrapped(int x, int y) const { return at(((x % w) + w) % w, ((y % h) + h) % h); }

    Real32 volume(void) const
    {
        Real32 sum = 0.f;
        for(const Vec4f &v : t)
            sum += v[2];
        return sum;
    }
};

class DropletFixture : public FrameFixture
{
  protected:
    explicit DropletFixture(UInt16 w = 64, UInt16 h = 48) : FrameFixture(w, h) {}

    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;
        // GL work of the simulation runs with the context current and the
        // action bound to the window, as inside a frame.
        win->activate();
        win->frameInit();
        action->setWindow(win.getCPtr());
        DropletUtils::the()->updateWindowState(win, action.get());
    }

    void TearDown(void) override
    {
        DropletUtils::the()->updateWindowState(NullFC, NULL);
        FrameFixture::TearDown();
    }

    /// A size x size square in the xy plane facing +z, its unwrap in
    /// texture unit 0 and its tangents (+x) in unit 1.
    NodePtr wetPlane(Real32 size = 2.f, UInt16 segments = 1)
    {
        NodePtr plane = makePlane(size, size, segments, segments);
        keep(plane);
        DropletUtils::the()->calcTangents(plane, 1);
        return plane;
    }

    ChunkMaterialPtr material(void)
    {
        ChunkMaterialPtr m = ChunkMaterial::create();
        keep(m);
        return m;
    }

    Map read(const TextureChunkPtr &tex)
    {
        Map m;
        m.w = tex->getImage()->getWidth();
        m.h = tex->getImage()->getHeight();
        m.t.resize(m.w * m.h);
        win->validateGLObject(tex->getGLId());
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(tex->getGLId()));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, &m.t[0][0]);
        glBindTexture(GL_TEXTURE_2D, 0);
        return m;
    }

    /// Replaces a map's texels, as the simulation would have left them.
    void write(const TextureChunkPtr &tex, const Map &m)
    {
        win->validateGLObject(tex->getGLId());
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(tex->getGLId()));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, m.w, m.h, GL_RGBA, GL_FLOAT, &m.t[0][0]);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
};

// --- the simulation's formulas -----------------------------------------------------

/// What a half-float texel keeps of a value.
inline Real32 half(Real32 v)
{
    return Real32(Real16(v));
}

struct FlowParams
{
    Vec3f  force         = Vec3f(0.f, -1.f, 0.f); // in the object's coordinates
    Real32 timeStep      = 0.4f;
    Real32 density       = 1.f;
    Real32 viscosity     = 1.f;
    Real32 frictionN     = 8.f;
    Real32 frictionSigma = 0.5f;
};

/// The velocity pass, texel by texel, with the encoded normal and tangent
/// maps as the GPU sees them.
inline Map velocityPass(const Map &surface, const Map &normals, const Map &tangents,
                        const FlowParams &p)
{
    Map out = surface;
    for(int y = 0; y < surface.h; ++y)
        for(int x = 0; x < surface.w; ++x)
        {
            Vec4f  s = surface.at(x, y);
            Real32 z = std::min(std::max(s[2], 0.f), 1.f);
            Vec3f  n(normals.at(x, y)[0] * 2.f - 1.f, normals.at(x, y)[1] * 2.f - 1.f,
                     normals.at(x, y)[2] * 2.f - 1.f);
            Vec3f  t(tangents.at(x, y)[0] * 2.f - 1.f, tangents.at(x, y)[1] * 2.f - 1.f,
                     tangents.at(x, y)[2] * 2.f - 1.f);
            Vec3f  b   = n.cross(t);
            Vec3f  acc = p.force * (1.f / (p.density * std::max(0.01f, z)));
            Real32 ax  = t.dot(acc), ay = b.dot(acc);
            Real32 att = std::exp(-std::pow(1.f - z, p.frictionN) / p.frictionSigma) * p.viscosity;
            att        = std::min(std::max(att, 0.f), 1.f);
            out.at(x, y) = Vec4f(half((s[0] + ax * p.timeStep) * att),
                                 half((s[1] + ay * p.timeStep) * att), half(z), 0.f);
        }
    return out;
}

/// The advection pass: every texel gathers from its nine neighbours the
/// share their displacement sends it; fluid leaves at the low borders.
inline Map advectionPass(const Map &surface, Real32 timeStep)
{
    auto pos = [](Real32 t) { return std::max(0.f, t); };
    auto neg = [](Real32 t) { return std::fabs(std::min(0.f, t)); };
    auto rem = [](Real32 t) { return 1.f - std::fabs(t); };

    Map out = surface;
    for(int y = 0; y < surface.h; ++y)
        for(int x = 0; x < surface.w; ++x)
        {
            Real32 c = 0.f;
            for(int dy = -1; dy <= 1; ++dy)
                for(int dx = -1; dx <= 1; ++dx)
                {
                    const Vec4f &s = surface.wrapped(x + dx, y + dy);
                    Real32       d[2] = {s[0] * timeStep, s[1] * timeStep};
                    Real32       len  = std::sqrt(d[0] * d[0] + d[1] * d[1]);
                    if(len > 1.f)
                    {
                        d[0] /= len;
                        d[1] /= len;
                    }
                    // the neighbour on the left sends what moves right, ...
                    Real32 wx = dx < 0 ? pos(d[0]) : dx > 0 ? neg(d[0]) : rem(d[0]);
                    Real32 wy = dy < 0 ? pos(d[1]) : dy > 0 ? neg(d[1]) : rem(d[1]);
                    c += wx * wy * s[2];
                }
            if(x == 0 || y == 0)
                c = 0.f;
            const Vec4f &centre = surface.at(x, y);
            out.at(x, y) = Vec4f(centre[0], centre[1], half(std::min(std::max(c, 0.f), 1.f)), 0.f);
        }
    return out;
}

} // namespace droplettest

#endif
