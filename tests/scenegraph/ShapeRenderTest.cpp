// A torus from makeTorusGeo drawn into an EGL window through an identity
// camera covers exactly the ring between the two polygons its outermost and
// innermost vertex rows span (computed here from the torus formulas);
// pixels within 1.5 pixels of a polygon edge are left out.
#include "GeometryRenderScene.h"

#include <cmath>

using namespace osg;
using namespace geometrytest;

namespace
{

/// Signed distance of (x, y) from the border of the regular polygon with
/// n corners at radius rho, corner a at angle a * 2pi/n clockwise from +x:
/// positive inside.
Real32 insideDistance(Real32 x, Real32 y, Real32 rho, UInt32 n)
{
    Real32 best = 1e30f;
    for(UInt32 a = 0; a < n; ++a)
    {
        Real32 t0 = 2 * Pi * a / n, t1 = 2 * Pi * (a + 1) / n;
        Real32 x0 = rho * std::cos(t0), y0 = -rho * std::sin(t0);
        Real32 x1 = rho * std::cos(t1), y1 = -rho * std::sin(t1);
        // the edge runs clockwise: the inside is on its right
        Real32 ex = x1 - x0, ey = y1 - y0, len = std::sqrt(ex * ex + ey * ey);
        Real32 d  = ((x - x0) * ey - (y - y0) * ex) / len;
        best      = std::min(best, d);
    }
    return best;
}

} // namespace

TEST(ShapeRender, TorusCoversTheRingBetweenItsPolygons)
{
    RenderScene s;
    NEED_GL(s);

    const Real32 r = .15f, R = .6f;
    const UInt16 sides = 16, rings = 24;
    GeometryPtr  torus = makeTorusGeo(r, R, sides, rings);
    ASSERT_NE(torus, NullFC);
    beginEditCP(torus, Geometry::MaterialFieldMask);
    torus->setMaterial(unlit(Color3f(1, 1, 1)));
    endEditCP(torus, Geometry::MaterialFieldMask);
    s.add(torus);

    std::vector<UInt8> img = s.render();
    savePNG(img, "torus");

    const Real32 pixelSize = 2.f / W, margin = 1.5f * pixelSize;
    UInt32       checked = 0, wrong = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            Real32 cx = (x + .5f) * pixelSize - 1, cy = (y + .5f) * pixelSize - 1;
            Real32 outer = insideDistance(cx, cy, R + r, rings);
            Real32 inner = insideDistance(cx, cy, R - r, rings);
            if(std::fabs(outer) < margin || std::fabs(inner) < margin)
                continue;
            bool         want = outer > 0 && inner < 0;
            const UInt8 *p    = pixel(img, x, y);
            bool         lit  = p[0] == 255 && p[1] == 255 && p[2] == 255;
            bool         dark = p[0] == 0 && p[1] == 0 && p[2] == 0;
            ++checked;
            if(want ? !lit : !dark)
            {
                if(wrong++ < 5)
                    ADD_FAILURE() << "pixel " << x << ", " << y << " want "
                                  << (want ? "torus" : "background");
            }
        }
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GT(checked, W * H / 2);
}
