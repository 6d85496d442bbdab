// PolygonForeground: the polygon covers exactly the pixels its coordinates
// name, in pixel and normalised modes, counted from the far edges for
// negative values, zoomed by scale, with the texture coordinates in the
// right corners; a size mismatch draws nothing and says why.
#include "WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageForeground.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGTextureChunk.h>

using namespace osg;
using namespace wintest;

namespace
{


// The port: pixels 8..55 x 4..43 of a 64 x 48 window, 48 x 40 pixels.
const Int32 PolyPortL = 8, PolyPortB = 4, PolyPortW = 48, PolyPortH = 40;

class PolygonFixture : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;

        vp = port(Real32(PolyPortL), Real32(PolyPortL + PolyPortW - 1), Real32(PolyPortB),
                  Real32(PolyPortB + PolyPortH - 1), solid(Grey));

        // 2 x 2 texels: red, green (bottom row), blue, yellow (top row).
        ImagePtr img = Image::create();
        const UInt8 texels[12] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
        img->set(GL_RGB, 2, 2, 1, 1, 1, 0.0, texels);

        TextureChunkPtr tex = nearestTexture(img);

        material = ChunkMaterial::create();
        keep(material);
        beginEditCP(material);
        material->addChunk(tex);
        endEditCP(material);
    }

    /// A textured quad with corners (x0, y0) .. (x1, y1), texture
    /// coordinates 0..1 from the first corner.
    PolygonForegroundPtr quad(Real32 x0, Real32 y0, Real32 x1, Real32 y1, bool normX,
                              bool normY)
    {
        PolygonForegroundPtr fg = PolygonForeground::create();
        beginEditCP(fg);
        fg->setMaterial(material);
        fg->setNormalizedX(normX);
        fg->setNormalizedY(normY);
        fg->getPositions().push_back(Pnt2f(x0, y0));
        fg->getPositions().push_back(Pnt2f(x1, y0));
        fg->getPositions().push_back(Pnt2f(x1, y1));
        fg->getPositions().push_back(Pnt2f(x0, y1));
        fg->getTexCoords().push_back(Vec3f(0, 0, 0));
        fg->getTexCoords().push_back(Vec3f(1, 0, 0));
        fg->getTexCoords().push_back(Vec3f(1, 1, 0));
        fg->getTexCoords().push_back(Vec3f(0, 1, 0));
        endEditCP(fg);
        vp->clearForegrounds();
        vp->addForeground(fg);
        return fg;
    }

    /// Renders and compares every window pixel with the quad covering
    /// viewport columns cx0..cx1 and rows cy0..cy1 (inclusive), in four
    /// texel quadrants.
    void expectQuad(const char *name, Int32 cx0, Int32 cx1, Int32 cy0, Int32 cy1)
    {
        frame();

        std::vector<RGBA> px = readAll(win);
        writePNG(name, px, 64, 48);

        const Int32 midX = (cx0 + cx1 + 1) / 2, midY = (cy0 + cy1 + 1) / 2;

        UInt32 wrong = 0;
        for(Int32 y = 0; y < 48; ++y)
        {
            for(Int32 x = 0; x < 64; ++x)
            {
                const Int32 vx = x - PolyPortL, vy = y - PolyPortB;

                // outside the port nothing was drawn this frame
                if(vx < 0 || vx >= PolyPortW || vy < 0 || vy >= PolyPortH)
                    continue;

                RGBA expect = Grey;
                if(vx >= cx0 && vx <= cx1 && vy >= cy0 && vy <= cy1)
                    expect = vy < midY ? (vx < midX ? Red : Green) : (vx < midX ? Blue : Yellow);

                if(px[y * 64 + x] != expect && ++wrong <= 5)
                    ADD_FAILURE() << name << ": pixel " << vx << "," << vy << " of the port is "
                                  << px[y * 64 + x] << ", expected " << expect;
            }
        }
        EXPECT_EQ(wrong, 0u) << name;
    }

    ViewportPtr      vp;
    ChunkMaterialPtr material;
};

} // namespace

TEST_F(PolygonFixture, PixelCoordinatesCoverExactlyTheirPixels)
{
    quad(10.f, 6.f, 30.f, 20.f, false, false);
    expectQuad("polygon_pixels", 10, 29, 6, 19);

    // -1 is the right/top edge itself, -11 ten pixels in from it.
    quad(4.f, 2.f, -1.f, -11.f, false, false);
    expectQuad("polygon_pixels_negative", 4, PolyPortW - 1, 2, PolyPortH - 11);
}

TEST_F(PolygonFixture, NormalisedAndMixedCoordinates)
{
    quad(0.25f, 0.25f, 0.75f, 0.5f, true, true);
    expectQuad("polygon_normalised", 12, 35, 10, 19);

    // x normalised, y in pixels counted back from the top.
    quad(0.5f, 6.f, 1.f, -5.f, true, false);
    expectQuad("polygon_mixed", 24, PolyPortW - 1, 6, PolyPortH - 5);
}

TEST_F(PolygonFixture, ScaleZoomsAroundTheCentre)
{
    PolygonForegroundPtr fg = quad(0.f, 0.f, 1.f, 1.f, true, true);
    beginEditCP(fg);
    fg->setScale(0.5f);
    endEditCP(fg);
    expectQuad("polygon_scaled", 12, 35, 10, 29);

    // A non-positive scale counts as 1.
    beginEditCP(fg);
    fg->setScale(0.f);
    endEditCP(fg);
    expectQuad("polygon_unscaled", 0, PolyPortW - 1, 0, PolyPortH - 1);
}

TEST_F(PolygonFixture, MismatchedListsDrawNothing)
{
    PolygonForegroundPtr fg = quad(0.f, 0.f, 1.f, 1.f, true, true);
    beginEditCP(fg);
    fg->getTexCoords().resize(3);
    endEditCP(fg);

    LogCapture log(LOG_WARNING);
    win->render(action.get());
    EXPECT_NE(log.take().find("PolygonForeground::draw: positions and texcoords have "
                              "different sizes (4 vs. 3)!"),
              std::string::npos);

    std::vector<RGBA> px = readAll(win);
    EXPECT_EQ(px[(PolyPortB + 20) * 64 + PolyPortL + 20], Grey);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(PolygonFixture, ImageForegroundPlacesImagesByPixelOrFraction)
{
    vp->clearForegrounds();

    ImagePtr img = Image::create();
    const UInt8 texels[4 * 3 * 2] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0,
                                     255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
    img->set(GL_RGB, 4, 2, 1, 1, 1, 0.0, texels);
    keep(img);

    ImageForegroundPtr fg = ImageForeground::create();
    beginEditCP(fg);
    fg->addImage(img, Pnt2f(10.f, 3.f));    // pixels
    fg->addImage(img, Pnt2f(0.5f, 0.75f));  // fractions: 24, 30
    endEditCP(fg);
    vp->addForeground(fg);

    frame();

    std::vector<RGBA> px = readAll(win);
    const RGBA        row[4] = {Red, Green, Blue, Yellow};
    const Int32       at[2][2] = {{10, 3}, {24, 30}};
    for(UInt32 i = 0; i < 2; ++i)
        for(Int32 y = 0; y < 2; ++y)
            for(Int32 x = 0; x < 4; ++x)
                EXPECT_EQ(px[(PolyPortB + at[i][1] + y) * 64 + PolyPortL + at[i][0] + x], row[x])
                    << "image " << i << " pixel " << x << "," << y;
    EXPECT_EQ(px[(PolyPortB + at[0][1]) * 64 + PolyPortL + at[0][0] + 4], Grey);
}
