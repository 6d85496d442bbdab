// SimpleTexturedMaterial: the image with its filters and environment mode,
// sphere-mapped coordinates with envMap, and the two ways an image's alpha
// is shown (blended, or cut out by the alpha test when the alpha is
// binary), each rendered and checked pixel by pixel.
#include "TextureCoordinateScene.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGSimpleTexturedMaterial.h>

using namespace osg;
using namespace geometrytest;
using namespace texcoordtest;

namespace texturedmaterialtest
{

/// 4 x 4 RGB: texel (x, y) is (10 + 60x, 10 + 60y, 200).
ImagePtr gridImage(void)
{
    std::vector<UInt8> px(4 * 4 * 3);
    for(UInt32 y = 0; y < 4; ++y)
    {
        for(UInt32 x = 0; x < 4; ++x)
        {
            px[(y * 4 + x) * 3 + 0] = UInt8(10 + 60 * x);
            px[(y * 4 + x) * 3 + 1] = UInt8(10 + 60 * y);
            px[(y * 4 + x) * 3 + 2] = 200;
        }
    }
    ImagePtr img = Image::create();
    beginEditCP(img);
    img->set(Image::OSG_RGB_PF, 4, 4, 1, 1, 1, 0, &px[0]);
    endEditCP(img);
    return img;
}

SimpleTexturedMaterialPtr stMaterial(ImagePtr img, GLenum filter, GLenum env)
{
    SimpleTexturedMaterialPtr m = SimpleTexturedMaterial::create();
    beginEditCP(m);
    m->setImage(img);
    m->setMinFilter(filter);
    m->setMagFilter(filter);
    m->setEnvMode(env);
    m->setDiffuse(Color3f(0.5f, 1, 0.25f));
    m->setLit(false);
    endEditCP(m);
    return m;
}

/// Adds a window-filling quad with the material; returns its node.
NodePtr fillWindow(RenderScene &s, MaterialPtr mat)
{
    NodePtr n = placedQuad(2, 2, Vec3f(0, 0, 0), 1, mat);
    addToRoot(s, n);
    return n;
}

::testing::AssertionResult nearColour(const UInt8 *p, Real32 r, Real32 g, Real32 b, Real32 tol)
{
    if(std::fabs(p[0] - r) > tol || std::fabs(p[1] - g) > tol || std::fabs(p[2] - b) > tol)
        return ::testing::AssertionFailure() << "got " << int(p[0]) << "," << int(p[1]) << ","
                                             << int(p[2]) << " want " << r << "," << g << "," << b;
    return ::testing::AssertionSuccess();
}

} // namespace texturedmaterialtest

using namespace texturedmaterialtest;

TEST(SimpleTexturedMaterial, ImageFiltersAndEnvironmentModeReachTheTexture)
{
    RenderScene s;
    NEED_GL(s);

    // replace: each 16 x 16 pixel block shows its texel
    ImagePtr                  img = gridImage();
    SimpleTexturedMaterialPtr mat = stMaterial(img, GL_NEAREST, GL_REPLACE);
    fillWindow(s, mat);
    EXPECT_FALSE(mat->isTransparent());

    std::vector<UInt8> px  = s.render();
    UInt32             bad = 0;
    for(UInt32 y = 0; y < H; ++y)
        for(UInt32 x = 0; x < W; ++x)
            bad += !nearColour(pixel(px, x, y), 10 + 60 * (x / 16), 10 + 60 * (y / 16), 200, 1);
    EXPECT_EQ(bad, 0u) << "replace";

    // modulate: texel times the unlit colour
    beginEditCP(mat, SimpleTexturedMaterial::EnvModeFieldMask);
    mat->setEnvMode(GL_MODULATE);
    endEditCP(mat, SimpleTexturedMaterial::EnvModeFieldMask);
    px  = s.render();
    bad = 0;
    for(UInt32 y = 0; y < H; ++y)
        for(UInt32 x = 0; x < W; ++x)
            bad += !nearColour(pixel(px, x, y), (10 + 60 * (x / 16)) * 0.5f, 10 + 60 * (y / 16),
                               200 * 0.25f, 2);
    EXPECT_EQ(bad, 0u) << "modulate";

    // linear filtering: a pixel just right of a texel border mixes the two
    beginEditCP(mat, SimpleTexturedMaterial::MinFilterFieldMask | SimpleTexturedMaterial::MagFilterFieldMask);
    mat->setMinFilter(GL_LINEAR);
    mat->setMagFilter(GL_LINEAR);
    endEditCP(mat, SimpleTexturedMaterial::MinFilterFieldMask | SimpleTexturedMaterial::MagFilterFieldMask);
    px = s.render();
    // pixel 16 samples at 16.5 / 64 * 4 - 0.5 = 0.53125 between texels 0 and 1
    EXPECT_TRUE(nearColour(pixel(px, 16, 8), (10 + 60 * 0.53125f) * 0.5f, 10, 50, 2));

    // the private chunks carry the fields
    StatePtr        state = mat->getState();
    TextureChunkPtr tex   = TextureChunkPtr::dcast(state->getChunk(TextureChunk::getStaticClassId()));
    ASSERT_NE(tex, NullFC);
    EXPECT_EQ(tex->getImage(), img);
    EXPECT_EQ(tex->getMinFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(tex->getEnvMode(), GLenum(GL_MODULATE));
    EXPECT_NE(state->getChunk(TexGenChunk::getStaticClassId()), NullFC);
}

TEST(SimpleTexturedMaterial, EnvMapSphereMapsTheImage)
{
    RenderScene s;
    NEED_GL(s);

    SimpleTexturedMaterialPtr mat = stMaterial(coordinateImage(), GL_NEAREST, GL_REPLACE);
    beginEditCP(mat, SimpleTexturedMaterial::EnvMapFieldMask);
    mat->setEnvMap(true);
    endEditCP(mat, SimpleTexturedMaterial::EnvMapFieldMask);

    Vec3f normal(-0.2f, 0.35f, 1);
    normal.normalize();
    addToRoot(s, tiltedQuad(normal, mat));

    std::vector<UInt8> img = s.render();
    expectTexels(img,
                 [&](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     sphereMap(Vec3f(x, y, -0.5f), normal, u, v);
                     return true;
                 },
                 2, "sphere-mapped image");

    // off again: the quad's own coordinates
    beginEditCP(mat, SimpleTexturedMaterial::EnvMapFieldMask);
    mat->setEnvMap(false);
    endEditCP(mat, SimpleTexturedMaterial::EnvMapFieldMask);
    img = s.render();
    expectTexels(img,
                 [&](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     if(!inside(x, y, -1, -1, 1, 1))
                         return false;
                     u = (x + 1) / 2;
                     v = (y + 1) / 2;
                     return true;
                 },
                 1, "plain coordinates");
}

TEST(SimpleTexturedMaterial, BinaryAlphaIsCutOutSmoothAlphaIsBlended)
{
    RenderScene s;
    NEED_GL(s);
    beginEditCP(s.bg);
    s.bg->setColor(Color3f(0, 1, 0));
    endEditCP(s.bg);

    // left texel: red, alpha 0; right texel: blue, alpha 128
    const UInt8 texels[] = {255, 0, 0, 0, 0, 0, 255, 128};
    ImagePtr    smooth   = Image::create();
    beginEditCP(smooth);
    smooth->set(Image::OSG_RGBA_PF, 2, 1, 1, 1, 1, 0, texels);
    endEditCP(smooth);
    ImagePtr binary = Image::create();
    beginEditCP(binary);
    binary->set(Image::OSG_RGBA_PF, 2, 1, 1, 1, 1, 0, texels);
    binary->setForceAlphaBinary(true);
    endEditCP(binary);

    SimpleTexturedMaterialPtr mat = stMaterial(smooth, GL_NEAREST, GL_REPLACE);
    EXPECT_TRUE(mat->isTransparent());
    fillWindow(s, mat);

    std::vector<UInt8> px = s.render();
    EXPECT_TRUE(nearColour(pixel(px, 10, 32), 0, 255, 0, 1)) << "alpha 0 shows the background";
    EXPECT_TRUE(nearColour(pixel(px, 50, 32), 0, 255 * (1 - 128 / 255.f), 128, 2))
        << "alpha 128 is blended";
    BlendChunkPtr blend = BlendChunkPtr::dcast(mat->getState()->getChunk(BlendChunk::getStaticClassId()));
    ASSERT_NE(blend, NullFC);
    EXPECT_EQ(blend->getSrcFactor(), GLenum(GL_SRC_ALPHA));
    EXPECT_EQ(blend->getAlphaFunc(), GLenum(GL_NONE));

    // the same texels marked binary: cut out where alpha is 0, opaque elsewhere
    SimpleTexturedMaterialPtr cut = stMaterial(binary, GL_NEAREST, GL_REPLACE);
    EXPECT_TRUE(cut->isTransparent());
    s.clearChildren();
    fillWindow(s, cut);
    px = s.render();
    EXPECT_TRUE(nearColour(pixel(px, 10, 32), 0, 255, 0, 1)) << "alpha 0 is cut out";
    EXPECT_TRUE(nearColour(pixel(px, 50, 32), 0, 0, 255, 1)) << "alpha 128 passes the test unblended";
    blend = BlendChunkPtr::dcast(cut->getState()->getChunk(BlendChunk::getStaticClassId()));
    ASSERT_NE(blend, NullFC);
    EXPECT_EQ(blend->getSrcFactor(), GLenum(GL_ONE));
    EXPECT_EQ(blend->getDestFactor(), GLenum(GL_ZERO));
    EXPECT_EQ(blend->getAlphaFunc(), GLenum(GL_NOTEQUAL));

    // decal keeps the surface colour where alpha is 0: not transparent
    beginEditCP(cut, SimpleTexturedMaterial::EnvModeFieldMask);
    cut->setEnvMode(GL_DECAL);
    endEditCP(cut, SimpleTexturedMaterial::EnvModeFieldMask);
    EXPECT_FALSE(cut->isTransparent());
}
