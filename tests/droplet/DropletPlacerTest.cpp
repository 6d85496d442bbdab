// DropletPlacer: the droplet cap's height formula, the shape map it makes
// (bytes), and what a placement adds to a float surface map, texel for
// texel: one source filling the map, a source in one quadrant, overlapping
// sources, the volume factor, clearing.
#include "DropletTestSupport.h"

#include <OpenSG/OSGImage.h>

#include <cmath>

using namespace droplettest;

namespace
{

class DropletPlacerTest : public DropletFixture
{
  protected:
    /// A float surface map of n x n texels, zeroed.
    TextureChunkPtr surfaceMap(int n)
    {
        ImagePtr img = Image::create();
        img->set(GL_RGBA, n, n, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE);
        TextureChunkPtr tex = TextureChunk::create();
        keep(tex);
        beginEditCP(tex);
        tex->setImage(img);
        tex->setInternalFormat(DropletFlow::SurfaceMapFormat);
        tex->setMinFilter(GL_LINEAR);
        tex->setMagFilter(GL_LINEAR);
        endEditCP(tex);
        return tex;
    }

    /// The blue byte of shape texel (i, j).
    static Real32 shape(const DropletPlacer &placer, int i, int j)
    {
        const UInt8 *p = placer.getShapeMap()->getImage()->getData() +
                         (j * DropletPlacer::ShapeMapSize + i) * 3;
        return p[2] / 255.f;
    }
};

} // namespace

TEST_F(DropletPlacerTest, TheCapIsFlatAtItsFootAndTanHalfTheAngleAtItsCentre)
{
    DropletPlacer placer(surfaceMap(8));
    for(Real32 angle : {0.3f, Pi / 3.f, 1.2f, Pi / 2.f})
    {
        const Real32 y = -std::cos(angle);
        EXPECT_NEAR(placer.calcDropletHeight(0.f, y), std::tan(angle / 2.f), 1e-5f) << angle;
        EXPECT_NEAR(placer.calcDropletHeight(1.f, y), 0.f, 1e-6f) << angle;
        EXPECT_NEAR(placer.calcDropletHeight(2.5f, y), 0.f, 1e-6f) << angle;
        // the cap falls monotonically from the centre to the foot
        EXPECT_GT(placer.calcDropletHeight(0.5f, y), placer.calcDropletHeight(0.9f, y));
    }
    // a right angle is a half sphere
    EXPECT_NEAR(placer.calcDropletHeight(0.6f, 0.f), 0.8f, 1e-6f);
}

TEST_F(DropletPlacerTest, TheShapeMapIsAHalfSphereInBlueForARightContactAngle)
{
    DropletPlacer placer(surfaceMap(8));
    placer.rebuildShapeMap(Pi / 2.f);

    ImagePtr img = placer.getShapeMap()->getImage();
    ASSERT_EQ(img->getWidth(), 128);
    ASSERT_EQ(img->getHeight(), 128);
    EXPECT_EQ(img->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(placer.getShapeMap()->getInternalFormat(), GLenum(GL_RGBA8));
    EXPECT_EQ(placer.getShapeMap()->getWrapS(), GLenum(GL_CLAMP_TO_EDGE));

    const UInt8 *p = img->getData();
    for(int j = 0; j < 128; ++j)
        for(int i = 0; i < 128; ++i)
        {
            const UInt8 *t = p + (j * 128 + i) * 3;
            EXPECT_EQ(t[0], 0);
            EXPECT_EQ(t[1], 0);
            const Real32 u = 2.f * (i + 0.5f) / 128.f - 1.f, v = 2.f * (j + 0.5f) / 128.f - 1.f;
            const Real32 r = std::sqrt(u * u + v * v);
            if(r >= 1.f)
            {
                EXPECT_EQ(t[2], 0) << i << "," << j;
            }
            else
            {
                EXPECT_NEAR(t[2], std::sqrt(1.f - r * r) * 255.f, 1.f) << i << "," << j;
            }
        }
    for(int i : {63, 64})
        for(int j : {63, 64})
            EXPECT_EQ(p[(j * 128 + i) * 3 + 2], 254);
}

TEST_F(DropletPlacerTest, AnObtuseAngleShapesLikeItsSupplement)
{
    DropletPlacer a(surfaceMap(8)), b(surfaceMap(8));
    a.rebuildShapeMap(Pi / 3.f);
    b.rebuildShapeMap(Pi - Pi / 3.f);
    ImagePtr ia = a.getShapeMap()->getImage(), ib = b.getShapeMap()->getImage();
    EXPECT_TRUE(std::equal(ia->getData(), ia->getData() + ia->getSize(), ib->getData()));
    // flatter than a half sphere
    EXPECT_LT(shape(a, 64, 64), 0.6f);
    EXPECT_GT(shape(a, 64, 64), 0.55f);
}

TEST_F(DropletPlacerTest, ASourceFillingTheMapAddsTheShapeTexelForTexel)
{
    TextureChunkPtr map = surfaceMap(128);
    DropletPlacer   placer(map);
    placer.rebuildShapeMap(Pi / 2.f);
    placer.addSource(DropletSource(0.5f, 0.5f, 1.f, 1.f));
    placer.render(true);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));

    Map m = read(map);
    for(int j = 0; j < 128; ++j)
        for(int i = 0; i < 128; ++i)
        {
            EXPECT_EQ(m.at(i, j)[0], 0.f);
            EXPECT_EQ(m.at(i, j)[1], 0.f);
            EXPECT_NEAR(m.at(i, j)[2], half(shape(placer, i, j)), 1e-3f) << i << "," << j;
        }
    EXPECT_NEAR(m.at(64, 64)[2], 254.f / 255.f, 1e-3f);
}

TEST_F(DropletPlacerTest, ASmallSourceCoversItsSquareOnly)
{
    TextureChunkPtr map = surfaceMap(128);
    DropletPlacer   placer(map);
    placer.rebuildShapeMap(Pi / 2.f);
    placer.addSource(DropletSource(0.25f, 0.25f, 0.5f, 1.f));
    placer.render(true);

    Map m = read(map);
    for(int j = 0; j < 128; ++j)
        for(int i = 0; i < 128; ++i)
        {
            if(i >= 64 || j >= 64)
            {
                EXPECT_EQ(m.at(i, j)[2], 0.f) << i << "," << j;
                continue;
            }
            // each map texel falls between two shape texels each way; the
            // 8-bit filter may round to the next byte
            Real32 want = 0.f;
            for(int dj = 0; dj < 2; ++dj)
                for(int di = 0; di < 2; ++di)
                    want += 0.25f * shape(placer, 2 * i + di, 2 * j + dj);
            EXPECT_NEAR(m.at(i, j)[2], want, 1.5f / 255.f) << i << "," << j;
        }
}

TEST_F(DropletPlacerTest, SourcesAddUpScaledByTheirVolumeAndClearWipes)
{
    TextureChunkPtr map = surfaceMap(128);
    DropletPlacer   placer(map);
    placer.rebuildShapeMap(Pi / 2.f);

    // two overlapping sources add; values above 1 stay for the simulation
    placer.addSource(DropletSource(0.5f, 0.5f, 1.f, 1.f));
    placer.addSource(DropletSource(0.5f, 0.5f, 1.f, 0.5f));
    placer.render(true);
    EXPECT_NEAR(read(map).at(64, 64)[2], 1.5f * 254.f / 255.f, 2e-3f);

    // without clearing, the same placement adds again
    placer.render(false);
    EXPECT_NEAR(read(map).at(64, 64)[2], 3.f * 254.f / 255.f, 4e-3f);

    // no sources and no clear: nothing happens
    placer.clear();
    placer.render(false);
    EXPECT_NEAR(read(map).at(64, 64)[2], 3.f * 254.f / 255.f, 4e-3f);

    // no sources with a clear: the map is wiped
    placer.render(true);
    EXPECT_EQ(read(map).volume(), 0.f);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
