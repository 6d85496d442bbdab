// The ready shader of CommonSurfaceShaderMaterial against a CPU evaluation
// of its lighting: diffuse light from two lights under linear fog, a
// specular highlight across the view, a texture with a channel mask, a
// coordinate transform and an alpha channel, and normal maps in both
// spaces and formats. Every family's textured configuration compiles and
// runs without a warning with no light and with one; values the shader
// does not know are reported and replaced.
#include "ShaderTestSupport.h"

#include <OpenSG/CommonSurfaceShader.h>
#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGFogChunk.h>

#include <algorithm>

using namespace osg;
using namespace wintest;
using namespace shadertest;

namespace
{

const Real32 GlobalAmbient = 0.2f; // OpenGL's default light-model ambient

struct LightValues
{
    Vec3f towards;
    Vec3f diffuse;
    Vec3f ambient;
    Vec3f specular;
};

struct SurfaceValues
{
    Vec3f  emissive;
    Vec3f  ambient;
    Vec3f  diffuse;
    Vec3f  specular;
    Real32 shininess;
};

Vec3f times(const Vec3f &a, const Vec3f &b)
{
    return Vec3f(a[0] * b[0], a[1] * b[1], a[2] * b[2]);
}

/// The shader's lighting of point p (eye space) with normal n.
Vec3f shade(const SurfaceValues &s, const std::vector<LightValues> &lights, const Vec3f &p,
            Vec3f n)
{
    n.normalize();
    Vec3f v = -p;
    v.normalize();

    Vec3f ambient(GlobalAmbient, GlobalAmbient, GlobalAmbient), diffuse, specular;
    for(const LightValues &light : lights)
    {
        Vec3f l = light.towards;
        l.normalize();
        Real32 nl = std::max(n.dot(l), 0.f);
        ambient += light.ambient;
        diffuse += light.diffuse * nl;
        if(nl > 0.f)
        {
            Vec3f h = l + v;
            h.normalize();
            specular += light.specular *
                        std::pow(std::max(n.dot(h), 0.f), std::max(s.shininess * 128.f, 1e-4f));
        }
    }
    return s.emissive + times(s.ambient, ambient) + times(s.diffuse, diffuse) +
           times(s.specular, specular);
}

RGBA toPixel(const Vec3f &c, Real32 alpha = 1.f)
{
    auto clamp01 = [](Real32 x) { return std::min(std::max(x, 0.f), 1.f); };
    return toRGBA(clamp01(c[0]), clamp01(c[1]), clamp01(c[2]), clamp01(alpha));
}

Color4f colour(const Vec3f &c)
{
    return Color4f(c[0], c[1], c[2], 1.f);
}

class SurfaceFrame : public ShaderFrame
{
  protected:
    /// A material with the factors of s, on a plane that fills the view.
    CommonSurfaceShaderMaterialPtr surface(const SurfaceValues &s)
    {
        CommonSurfaceShaderMaterialPtr m = CommonSurfaceShaderMaterial::create();
        keep(m);
        beginEditCP(m);
        m->setEmissiveFactor(s.emissive);
        m->setAmbientFactor(s.ambient);
        m->setDiffuseFactor(s.diffuse);
        m->setSpecularFactor(s.specular);
        m->setShininessFactor(s.shininess);
        endEditCP(m);
        addPlane(m);
        return m;
    }

    void addLight(const LightValues &l)
    {
        ShaderFrame::addLight(l.towards, colour(l.diffuse), colour(l.ambient),
                              colour(l.specular));
        lightValues.push_back(l);
    }

    static void addChunk(const ChunkMaterialPtr &m, const StateChunkPtr &chunk)
    {
        beginEditCP(m, ChunkMaterial::ChunksFieldMask);
        m->addChunk(chunk);
        endEditCP(m, ChunkMaterial::ChunksFieldMask);
    }

    /// A 2 x 2 texture on unit 0 of m: texels bottom row first.
    ImagePtr addTexture(const ChunkMaterialPtr &m, const UInt8 (&texels)[4][4])
    {
        ImagePtr img = image(2, 2, 0);
        std::copy(&texels[0][0], &texels[0][0] + 16, img->editData());
        addChunk(m, nearestTexture(img));
        return img;
    }

    std::vector<LightValues> lightValues;
};

const UInt8 Texels[4][4] = {
    {200, 40, 10, 255}, {30, 220, 90, 128}, {10, 60, 240, 255}, {250, 250, 20, 64}};

// --- lighting against the CPU ------------------------------------------------------------------

TEST_F(SurfaceFrame, DiffuseLightsAndFog)
{
    SurfaceValues s = {Vec3f(0.05f, 0.f, 0.1f), Vec3f(0.5f, 0.5f, 0.5f), Vec3f(0.6f, 0.3f, 0.2f),
                       Vec3f(0.f, 0.f, 0.f), 0.1f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    PermutationSHLChunkPtr         chunk = CommonSurfaceShader::apply(m);
    ASSERT_NE(chunk, NullFC);
    EXPECT_EQ(CommonSurfaceShader::apply(m), chunk) << "a second apply finds the chunk";
    EXPECT_FALSE(m->isTransparent());

    addLight({Vec3f(0.3f, 0.4f, 0.866f), Vec3f(1.f, 0.8f, 0.6f), Vec3f(0.1f, 0.1f, 0.1f),
              Vec3f(1.f, 1.f, 1.f)});
    frame();
    const UInt32 spots[3][2] = {{8, 8}, {32, 24}, {56, 40}};
    for(const auto &xy : spots)
        EXPECT_PRED3(near, pixel(xy[0], xy[1]),
                     toPixel(shade(s, lightValues, eyePoint(xy[0], xy[1]), Vec3f(0, 0, 1))), 2)
            << xy[0] << ", " << xy[1];

    // a second light, and linear fog that is half way at the plane's depth
    addLight({Vec3f(-0.5f, 0.f, 0.866f), Vec3f(0.2f, 0.4f, 0.2f), Vec3f(0.f, 0.f, 0.f),
              Vec3f(1.f, 1.f, 1.f)});
    FogChunkPtr fog = FogChunk::create();
    beginEditCP(fog);
    fog->setMode(GL_LINEAR);
    fog->setStart(1.f);
    fog->setEnd(3.f);
    fog->setColor(Color4f(0.f, 0.f, 1.f, 1.f));
    endEditCP(fog);
    addChunk(m, fog);
    frame();
    for(const auto &xy : spots)
    {
        Vec3f lit = shade(s, lightValues, eyePoint(xy[0], xy[1]), Vec3f(0, 0, 1));
        EXPECT_PRED3(near, pixel(xy[0], xy[1]), toPixel(lit * 0.5f + Vec3f(0.f, 0.f, 0.5f)), 2)
            << xy[0] << ", " << xy[1];
    }
}

TEST_F(SurfaceFrame, SpecularHighlight)
{
    SurfaceValues s = {Vec3f(0.f, 0.f, 0.f), Vec3f(0.f, 0.f, 0.f), Vec3f(0.2f, 0.2f, 0.2f),
                       Vec3f(0.5f, 0.4f, 0.3f), 0.1f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    CommonSurfaceShader::apply(m);
    addLight({Vec3f(0.4f, 0.3f, 0.866f), Vec3f(1.f, 1.f, 1.f), Vec3f(0.f, 0.f, 0.f),
              Vec3f(1.f, 0.9f, 0.8f)});
    frame();

    for(UInt32 y = 4; y < 48; y += 10)
        for(UInt32 x = 4; x < 64; x += 10)
            EXPECT_PRED3(near, pixel(x, y),
                         toPixel(shade(s, lightValues, eyePoint(x, y), Vec3f(0, 0, 1))), 3)
                << x << ", " << y;
}

TEST_F(SurfaceFrame, TextureWithMaskTransformAndAlpha)
{
    SurfaceValues s = {Vec3f(0.f, 0.f, 0.f), Vec3f(0.f, 0.f, 0.f), Vec3f(1.f, 0.5f, 1.f),
                       Vec3f(0.f, 0.f, 0.f), 0.1f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    addTexture(m, Texels);

    Matrix flipU;
    flipU.setScale(-1.f, 1.f, 1.f);
    flipU.setTranslate(1.f, 0.f, 0.f);
    beginEditCP(m);
    m->setDiffuseTextureId(0);
    m->setDiffuseTextureChannelMask("bgr");
    m->setDiffuseTextureCoordinateTransform(flipU);
    m->getTextureTransformEnabled().push_back(0);
    m->getTextureTransformEnabled().push_back(0);
    m->getTextureTransformEnabled().push_back(1);
    m->setAlphaTextureId(0);
    endEditCP(m);
    CommonSurfaceShader::apply(m);
    EXPECT_TRUE(m->isTransparent());
    EXPECT_NE(m->find(BlendChunk::getClassType()), NullFC) << "a see-through surface blends";

    addLight({Vec3f(0.f, 0.f, 1.f), Vec3f(1.f, 1.f, 1.f), Vec3f(0.f, 0.f, 0.f),
              Vec3f(0.f, 0.f, 0.f)});
    frame();

    const UInt32 spots[4][2] = {{16, 12}, {48, 12}, {16, 36}, {48, 36}};
    for(const auto &xy : spots)
    {
        Vec3f  p = eyePoint(xy[0], xy[1]);
        Real32 u = 1.f - (p[0] + 2.f) / 4.f, v = (p[1] + 2.f) / 4.f;
        // the diffuse texture is flipped, the alpha texture is not
        const UInt8 *t     = Texels[(v < 0.5f ? 0 : 2) + (u < 0.5f ? 0 : 1)];
        const UInt8 *a     = Texels[(v < 0.5f ? 0 : 2) + (u < 0.5f ? 1 : 0)];
        Vec3f        c     = times(s.diffuse, Vec3f(t[2], t[1], t[0]) * (1.f / 255.f));
        Real32       alpha = a[3] / 255.f;
        Vec3f over = c * alpha + Vec3f(Grey.r, Grey.g, Grey.b) * ((1.f - alpha) / 255.f);
        RGBA  got  = pixel(xy[0], xy[1]);
        got.a      = 255; // the blend leaves the frame's alpha aside
        EXPECT_PRED3(near, got, toPixel(over), 2) << xy[0] << ", " << xy[1];
    }
}

TEST_F(SurfaceFrame, NormalMapsInBothSpacesAndFormats)
{
    // the map tilts the normal to +x, where the light is: without it the
    // plane would get no diffuse light at all
    SurfaceValues s = {Vec3f(0.f, 0.f, 0.f), Vec3f(0.f, 0.f, 0.f), Vec3f(0.8f, 0.8f, 0.8f),
                       Vec3f(0.f, 0.f, 0.f), 0.1f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    // (2 x 2: an image one texel high would make a 1-D texture)
    const UInt8 towardsX[4][4] = {
        {255, 128, 128, 255}, {255, 128, 128, 255}, {255, 128, 128, 255}, {255, 128, 128, 255}};
    addTexture(m, towardsX);
    addLight({Vec3f(1.f, 0.f, 0.f), Vec3f(1.f, 1.f, 1.f), Vec3f(0.f, 0.f, 0.f),
              Vec3f(0.f, 0.f, 0.f)});

    CommonSurfaceShader::apply(m);
    frame();
    EXPECT_PRED3(near, pixel(32, 24), toPixel(Vec3f(0.f, 0.f, 0.f)), 1) << "no map";

    struct Case
    {
        Int32       format, space;
        const char *mask;
    };
    const Case cases[] = {{0, 0, "rgb"}, {0, 1, "rgb"}, {1, 0, "rg"}, {1, 1, "rg"}};
    for(const Case &c : cases)
    {
        beginEditCP(m);
        m->setNormalTextureId(0);
        m->setNormalFormat(c.format);
        m->setNormalSpace(c.space);
        m->setNormalTextureChannelMask(c.mask);
        endEditCP(m);
        CommonSurfaceShader::apply(m);
        frame();
        for(UInt32 x = 8; x < 64; x += 24)
            EXPECT_PRED3(near, pixel(x, 24), toPixel(Vec3f(0.8f, 0.8f, 0.8f)), 2)
                << "format " << c.format << ", space " << c.space << ", x " << x;
    }
}

// --- every configuration -------------------------------------------------------------------

TEST_F(SurfaceFrame, EveryTexturedFamilyCompilesWithAndWithoutLight)
{
    SurfaceValues s = {Vec3f(0.1f, 0.1f, 0.1f), Vec3f(0.2f, 0.2f, 0.2f), Vec3f(0.8f, 0.8f, 0.8f),
                       Vec3f(0.3f, 0.3f, 0.3f), 0.2f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    addTexture(m, Texels);

    typedef void (CommonSurfaceShaderMaterial::*SetId)(const Int32 &);
    const SetId setters[] = {&CommonSurfaceShaderMaterial::setEmissiveTextureId,
                             &CommonSurfaceShaderMaterial::setAmbientTextureId,
                             &CommonSurfaceShaderMaterial::setDiffuseTextureId,
                             &CommonSurfaceShaderMaterial::setSpecularTextureId,
                             &CommonSurfaceShaderMaterial::setShininessTextureId,
                             &CommonSurfaceShaderMaterial::setAlphaTextureId,
                             &CommonSurfaceShaderMaterial::setNormalTextureId};

    // one family at a time with its transform, then all of them at once
    for(UInt32 i = 0; i <= 7; ++i)
    {
        beginEditCP(m);
        m->getTextureTransformEnabled().clear();
        for(UInt32 j = 0; j < 7; ++j)
        {
            (m.getCPtr()->*setters[j])(i == j || i == 7 ? 0 : -1);
            m->getTextureTransformEnabled().push_back(i == j ? 1 : 0);
        }
        endEditCP(m);
        CommonSurfaceShader::apply(m);

        for(UInt32 n = 0; n < 2; ++n)
        {
            SCOPED_TRACE(testing::Message() << "family " << i << ", " << n << " lights");
            setLightCount(n);
            frame();
        }
    }
}

TEST_F(SurfaceFrame, UnknownValuesAreReplaced)
{
    SurfaceValues s = {Vec3f(0.f, 0.f, 0.f), Vec3f(0.f, 0.f, 0.f), Vec3f(0.8f, 0.8f, 0.8f),
                       Vec3f(0.f, 0.f, 0.f), 0.1f};
    CommonSurfaceShaderMaterialPtr m = surface(s);
    addTexture(m, Texels);
    setLightCount(1);

    beginEditCP(m);
    m->setDiffuseTextureId(99);
    m->setEmissiveTextureId(0);
    m->setEmissiveTextureChannelMask("xy");
    m->setEmissiveTextureCoordinatesId(9);
    m->setShininessTextureId(0);
    m->setShininessTextureChannelMask("");
    m->setNormalFormat(7);
    m->setNormalSpace(-3);
    endEditCP(m);

    LogCapture log(LOG_WARNING);
    CommonSurfaceShader::apply(m);
    std::string text = log.take();
    for(const char *expected :
        {"Diffuse texture id 99", "Emissive channel mask 'xy'", "Emissive texture coordinates 9",
         "Shininess channel mask ''", "normalFormat 7", "normalSpace -3"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " in\n" << text;

    // the untextured diffuse family lights the plane with its factor
    frame();
    EXPECT_PRED3(near, pixel(32, 24), toPixel(shade(s, {{Vec3f(0, 0, 1), Vec3f(1, 1, 1),
                                                            Vec3f(0, 0, 0), Vec3f(1, 1, 1)}},
                                                    eyePoint(32, 24), Vec3f(0, 0, 1))),
                 2);

    EXPECT_EQ(CommonSurfaceShader::apply(CommonSurfaceShaderMaterialPtr()), NullFC);
}

} // namespace
