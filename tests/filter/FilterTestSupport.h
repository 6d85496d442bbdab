// What the display-filter tests share: a window whose ports show known
// pictures under a DisplayFilterForeground each, read-back of one port, and
// the texture sampling of GL on the CPU for the reference results.
#ifndef _FILTERTESTSUPPORT_H_
#define _FILTERTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace filtertest
{

using namespace osg;
using wintest::RGBA;

/// The pixels of one port, bottom row first.
struct Picture
{
    Int32             w = 0, h = 0;
    std::vector<RGBA> px;

    const RGBA &at(Int32 x, Int32 y) const { return px[y * w + x]; }
};

/// A colour in 0..1 per channel.
struct Colour
{
    Real32 r, g, b;
};

inline Colour toColour(const RGBA &c)
{
    return Colour{c.r / 255.f, c.g / 255.f, c.b / 255.f};
}

/// texture2D of GL_LINEAR with GL_CLAMP_TO_EDGE at (s, t) over the picture.
inline Colour sampleLinear(const Picture &p, Real32 s, Real32 t)
{
    const Real32 fx = s * p.w - 0.5f, fy = t * p.h - 0.5f;
    const Real32 x0f = std::floor(fx), y0f = std::floor(fy);
    const Real32 ax = fx - x0f, ay = fy - y0f;

    auto clampX = [&](Int32 x) { return std::min(std::max(x, 0), p.w - 1); };
    auto clampY = [&](Int32 y) { return std::min(std::max(y, 0), p.h - 1); };

    const Int32 x0 = clampX(Int32(x0f)), x1 = clampX(Int32(x0f) + 1);
    const Int32 y0 = clampY(Int32(y0f)), y1 = clampY(Int32(y0f) + 1);

    auto mix = [&](Real32 c00, Real32 c10, Real32 c01, Real32 c11)
    {
        return (c00 * (1 - ax) + c10 * ax) * (1 - ay) + (c01 * (1 - ax) + c11 * ax) * ay;
    };

    const Colour a = toColour(p.at(x0, y0)), b = toColour(p.at(x1, y0));
    const Colour c = toColour(p.at(x0, y1)), d = toColour(p.at(x1, y1));

    return Colour{mix(a.r, b.r, c.r, d.r), mix(a.g, b.g, c.g, d.g), mix(a.b, b.b, c.b, d.b)};
}

/// The GLSL program a filter put into a material, or NullFC.
inline SHLChunkPtr shaderOf(const ChunkMaterialPtr &mat)
{
    for(UInt32 i = 0; i < mat->getChunks().size(); ++i)
    {
        SHLChunkPtr shl = SHLChunkPtr::dcast(mat->getChunks(i));
        if(shl != NullFC)
            return shl;
    }
    return NullFC;
}

/// Counts the pixels of got that differ from expect(x, y) by more than
/// tolerance in a colour channel; skip(x, y) leaves pixels out. The first
/// few are reported.
inline UInt32 countWrong(const char *name, const Picture &got,
                         const std::function<Colour(Int32, Int32)> &expect, Int32 tolerance,
                         const std::function<bool(Int32, Int32)> &skip = nullptr)
{
    UInt32 wrong = 0;
    for(Int32 y = 0; y < got.h; ++y)
    {
        for(Int32 x = 0; x < got.w; ++x)
        {
            if(skip && skip(x, y))
                continue;

            const Colour e  = expect(x, y);
            const RGBA   g  = got.at(x, y);
            const Int32  er = Int32(std::lround(e.r * 255.f));
            const Int32  eg = Int32(std::lround(e.g * 255.f));
            const Int32  eb = Int32(std::lround(e.b * 255.f));

            if(std::abs(g.r - er) > tolerance || std::abs(g.g - eg) > tolerance ||
               std::abs(g.b - eb) > tolerance)
            {
                if(++wrong <= 5)
                    ADD_FAILURE() << name << ": pixel " << x << "," << y << " is " << g
                                  << ", expected " << er << ',' << eg << ',' << eb;
            }
        }
    }
    return wrong;
}

/// A window whose ports each show a picture through a filter foreground.
class FilterFrame : public wintest::FrameFixture
{
  protected:
    FilterFrame(UInt16 w, UInt16 h) : wintest::FrameFixture(w, h) {}

    /// A port over pixels [left, left + w) x [bottom, bottom + h) showing
    /// picture(x, y) texel for texel, followed by an empty filter
    /// foreground, which is returned.
    DisplayFilterForegroundPtr pictureQuad(Int32 left, Int32 bottom, Int32 w, Int32 h,
                                           const std::function<RGBA(Int32, Int32)> &picture)
    {
        ViewportPtr vp = port(Real32(left), Real32(left + w - 1), Real32(bottom),
                              Real32(bottom + h - 1), solid(RGBA{0, 0, 0, 255}));

        std::vector<UInt8> texels(size_t(w) * h * 3);
        for(Int32 y = 0; y < h; ++y)
        {
            for(Int32 x = 0; x < w; ++x)
            {
                const RGBA c                     = picture(x, y);
                texels[(size_t(y) * w + x) * 3 + 0] = c.r;
                texels[(size_t(y) * w + x) * 3 + 1] = c.g;
                texels[(size_t(y) * w + x) * 3 + 2] = c.b;
            }
        }

        ImagePtr img = Image::create();
        img->set(GL_RGB, w, h, 1, 1, 1, 0.0, texels.data());

        TextureChunkPtr tex = wintest::nearestTexture(img);
        beginEditCP(tex);
        tex->setScale(false);
        endEditCP(tex);

        ChunkMaterialPtr mat = ChunkMaterial::create();
        keep(mat);
        beginEditCP(mat);
        mat->addChunk(tex);
        endEditCP(mat);

        PolygonForegroundPtr quad = PolygonForeground::create();
        beginEditCP(quad);
        quad->setMaterial(mat);
        const Real32 corner[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        for(UInt32 i = 0; i < 4; ++i)
        {
            quad->getPositions().push_back(Pnt2f(corner[i][0], corner[i][1]));
            quad->getTexCoords().push_back(Vec3f(corner[i][0], corner[i][1], 0.f));
        }
        endEditCP(quad);

        DisplayFilterForegroundPtr filters = DisplayFilterForeground::create();

        beginEditCP(vp);
        vp->addForeground(quad);
        vp->addForeground(filters);
        endEditCP(vp);

        return filters;
    }

    static void setFilter(const DisplayFilterForegroundPtr &filters, const DisplayFilterPtr &f)
    {
        beginEditCP(filters, DisplayFilterForeground::FilterFieldMask);
        filters->getFilter().clear();
        if(f != NullFC)
            filters->getFilter().push_back(f);
        endEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    }

    /// The pixels [left, left + w) x [bottom, bottom + h) of the window.
    Picture grab(Int32 left, Int32 bottom, Int32 w, Int32 h, const std::string &png = "")
    {
        std::vector<RGBA> all = wintest::readAll(win);
        if(!png.empty())
            wintest::writePNG(png, all, winW, winH);

        Picture p;
        p.w = w;
        p.h = h;
        for(Int32 y = 0; y < h; ++y)
            for(Int32 x = 0; x < w; ++x)
                p.px.push_back(all[(bottom + y) * winW + left + x]);
        return p;
    }
};

} // namespace filtertest

#endif
