// TextureChunk on a real window: uploads, texel colours at known pixels,
// refresh versus re-initialisation, 3-D float textures in a shader.
#include "StateGLSupport.h"

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

#include <cmath>
#include <cstring>

using namespace osg;
using namespace statetest;

namespace
{
/// A w x h RGBA8 image whose texel (x, y) is (40x + 20, 40y + 20, 200, 255).
ImagePtr makeGradient(Int32 w, Int32 h)
{
    ImagePtr img = Image::create();
    addRefCP(img);
    std::vector<UInt8> data;
    for(Int32 y = 0; y < h; ++y)
        for(Int32 x = 0; x < w; ++x)
        {
            data.push_back(UInt8(40 * x + 20));
            data.push_back(UInt8(40 * y + 20));
            data.push_back(200);
            data.push_back(255);
        }
    img->set(Image::OSG_RGBA_PF, w, h, 1, 1, 1, 0.0, data.data());
    return img;
}

TextureChunkPtr makeTexture(const ImagePtr &img, GLenum filter = GL_NEAREST)
{
    TextureChunkPtr tex = TextureChunk::create();
    addRefCP(tex);
    beginEditCP(tex);
    tex->setImage(img);
    tex->setMinFilter(filter);
    tex->setMagFilter(filter);
    tex->setWrapS(GL_CLAMP_TO_EDGE);
    tex->setWrapT(GL_CLAMP_TO_EDGE);
    endEditCP(tex);
    return tex;
}

RGBA gradientTexel(Int32 x, Int32 y)
{
    return RGBA{UInt8(40 * x + 20), UInt8(40 * y + 20), 200, 255};
}

/// The level-0 texels of the 2-D texture bound to the active unit.
std::vector<RGBA> readTexture(GLuint name, Int32 w, Int32 h)
{
    std::vector<RGBA> texels(size_t(w) * h);
    glBindTexture(GL_TEXTURE_2D, name);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    return texels;
}

GLint texParameter(GLuint name, GLenum target, GLenum pname)
{
    GLint v = 0;
    glBindTexture(target, name);
    glGetTexParameteriv(target, pname, &v);
    return v;
}

class TextureChunkGL : public GLTest
{
};
} // namespace

TEST_F(TextureChunkGL, TexturedQuadShowsTheTexelsAtKnownPixels)
{
    ImagePtr        img = makeGradient(4, 4);
    TextureChunkPtr tex = makeTexture(img);
    StatePtr        state = State::create();
    addRefCP(state);
    state->addChunk(tex);

    state->activate(action);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    drawQuad();
    state->deactivate(action);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    writePNG("textured_quad");

    // 64 pixels over 4 texels: texel (x, y) covers pixels 16x ... 16x + 15
    for(Int32 y = 0; y < 4; ++y)
        for(Int32 x = 0; x < 4; ++x)
        {
            EXPECT_EQ(pixel(16 * x + 8, 16 * y + 8), gradientTexel(x, y)) << x << "," << y;
            EXPECT_EQ(pixel(16 * x + 1, 16 * y + 14), gradientTexel(x, y)) << x << "," << y;
        }

    subRefCP(state);
    subRefCP(tex);
    subRefCP(img);
}

TEST_F(TextureChunkGL, UnitsComeFromTheSlotAndActivationResetsTheTextureMatrix)
{
    ImagePtr        img  = makeGradient(2, 2);
    TextureChunkPtr tex0 = makeTexture(img), tex1 = makeTexture(img);
    StatePtr        state = State::create();
    addRefCP(state);
    state->addChunk(tex0, 0);
    state->addChunk(tex1, 3);

    // a stale matrix on unit 3 must not survive the activation
    TextureChunk::activeTexture(win.getCPtr(), 3);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glScalef(2, 2, 2);
    glMatrixMode(GL_MODELVIEW);

    state->activate(action);

    GLint bound = 0;
    TextureChunk::activeTexture(win.getCPtr(), 3);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(GLuint(bound), win->getGLObjectId(tex1->getGLId()));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    GLfloat m[16];
    glGetFloatv(GL_TEXTURE_MATRIX, m);
    EXPECT_EQ(m[0], 1.f);

    TextureChunk::activeTexture(win.getCPtr(), 1);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));

    TextureChunk::activeTexture(win.getCPtr(), 0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(GLuint(bound), win->getGLObjectId(tex0->getGLId()));

    state->deactivate(action);
    TextureChunk::activeTexture(win.getCPtr(), 3);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    TextureChunk::activeTexture(win.getCPtr(), 0);

    subRefCP(state);
    subRefCP(tex0);
    subRefCP(tex1);
    subRefCP(img);
}

TEST_F(TextureChunkGL, GLObjectIsMadeOnceAndRefreshedOrRecreatedOnChange)
{
    ImagePtr        img = makeGradient(4, 2);
    TextureChunkPtr tex = makeTexture(img);
    EXPECT_GT(tex->getGLId(), 0u);
    EXPECT_EQ(win->getGLObjectId(tex->getGLId()), 0u);   // nothing in GL before use

    const UInt32 created = TextureChunk::getNumTexCreate();
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    GLuint name = win->getGLObjectId(tex->getGLId());
    EXPECT_NE(name, 0u);
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 1);

    // validated once: a second activation changes nothing
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 1);

    // pixels edited through the image: a refresh of the whole image
    img->editData()[0] = 7;
    beginEditCP(img, Image::PixelFieldMask);
    endEditCP(img, Image::PixelFieldMask);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 1);
    EXPECT_EQ(win->getGLObjectId(tex->getGLId()), name);
    EXPECT_EQ(readTexture(name, 4, 2)[0].r, 7);

    // a dirty box re-uploads only that box (inclusive bounds)
    UInt8 *data = img->editData();
    data[4 * 1 + 0] = 11;         // texel (1, 0): inside
    data[4 * 3 + 0] = 13;         // texel (3, 0): outside
    data[4 * (4 + 1) + 0] = 17;   // texel (1, 1): outside
    tex->imageContentChanged(1, 2, 0, 0);
    EXPECT_EQ(tex->getDirtyMinX(), 1);
    EXPECT_EQ(tex->getDirtyMaxX(), 2);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    std::vector<RGBA> texels = readTexture(name, 4, 2);
    EXPECT_EQ(texels[1].r, 11);
    EXPECT_EQ(texels[2], gradientTexel(2, 0));
    EXPECT_EQ(texels[3], gradientTexel(3, 0));
    EXPECT_EQ(texels[5], gradientTexel(1, 1));
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 1);

    // NEAREST -> LINEAR is a refresh that re-applies the filters
    beginEditCP(tex, TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask);
    tex->setMinFilter(GL_LINEAR);
    tex->setMagFilter(GL_LINEAR);
    endEditCP(tex, TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 1);
    EXPECT_EQ(texParameter(name, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(readTexture(name, 4, 2)[3].r, 13);   // the whole image went up again

    // a mipmapped min filter needs a new texture
    beginEditCP(tex, TextureChunk::MinFilterFieldMask);
    tex->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(tex, TextureChunk::MinFilterFieldMask);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 2);
    EXPECT_EQ(texParameter(name, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);

    // any other field: re-initialisation
    beginEditCP(tex, TextureChunk::WrapSFieldMask);
    tex->setWrapS(GL_MIRRORED_REPEAT);
    endEditCP(tex, TextureChunk::WrapSFieldMask);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 3);
    EXPECT_EQ(texParameter(name, GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_MIRRORED_REPEAT);

    // a new size of the image: re-initialisation at the new size
    img->set(Image::OSG_RGBA_PF, 8, 8);
    tex->activate(action, 0);
    tex->deactivate(action, 0);
    EXPECT_EQ(TextureChunk::getNumTexCreate(), created + 4);
    GLint width = 0;
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 8);

    // destroyed with the chunk at the end of the window's frame
    subRefCP(tex);
    EXPECT_TRUE(glIsTexture(name));
    win->frameExit();
    EXPECT_FALSE(glIsTexture(name));
    // the image lost the chunk's reference and parent link
    EXPECT_EQ(img.getRefCount(), 1);
    EXPECT_EQ(img->getMFParents()->size(), 0u);

    subRefCP(img);
}

TEST_F(TextureChunkGL, SetImageCountsReferencesAndParentLinks)
{
    ImagePtr        a = makeGradient(2, 2), b = makeGradient(2, 2);
    TextureChunkPtr tex = makeTexture(a);
    EXPECT_EQ(a.getRefCount(), 2);
    ASSERT_EQ(a->getMFParents()->size(), 1u);
    EXPECT_EQ(a->getMFParents()->front(), FieldContainerPtr(tex));

    beginEditCP(tex, TextureChunk::ImageFieldMask);
    tex->setImage(b);
    endEditCP(tex, TextureChunk::ImageFieldMask);
    EXPECT_EQ(a.getRefCount(), 1);
    EXPECT_EQ(a->getMFParents()->size(), 0u);
    EXPECT_EQ(b.getRefCount(), 2);
    EXPECT_EQ(b->getMFParents()->size(), 1u);

    subRefCP(tex);
    EXPECT_EQ(b.getRefCount(), 1);
    subRefCP(a);
    subRefCP(b);
}

TEST_F(TextureChunkGL, ImagesWithoutDataMakeTexturesOfTheRequestedFormat)
{
    // render targets: a float and a depth texture without texels
    ImagePtr img = Image::create();
    addRefCP(img);
    img->set(Image::OSG_RGBA_PF, 16, 8, 1, 1, 1, 0.0, NULL, Image::OSG_FLOAT32_IMAGEDATA, false);
    EXPECT_EQ(img->getData(), nullptr);

    TextureChunkPtr color = makeTexture(img);
    beginEditCP(color);
    color->setInternalFormat(GL_RGBA16F_ARB);
    endEditCP(color);

    ImagePtr depthImg = Image::create();
    addRefCP(depthImg);
    depthImg->set(Image::OSG_L_PF, 16, 8, 1, 1, 1, 0.0, NULL, Image::OSG_UINT8_IMAGEDATA, false);
    TextureChunkPtr depth = makeTexture(depthImg);
    beginEditCP(depth);
    depth->setInternalFormat(GL_DEPTH_COMPONENT24);
    depth->setExternalFormat(GL_DEPTH_COMPONENT);
    endEditCP(depth);

    win->validateGLObject(color->getGLId());
    win->validateGLObject(depth->getGLId());

    GLint format = 0, w = 0;
    glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(color->getGLId()));
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &w);
    EXPECT_EQ(format, GL_RGBA16F_ARB);
    EXPECT_EQ(w, 16);

    glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(depth->getGLId()));
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    EXPECT_EQ(format, GL_DEPTH_COMPONENT24);
    glBindTexture(GL_TEXTURE_2D, 0);

    subRefCP(color);
    subRefCP(depth);
    subRefCP(img);
    subRefCP(depthImg);
}

TEST_F(TextureChunkGL, NonPowerOfTwoFlipMatrixMirrorsTheCoordinates)
{
    // scale off and a y flip: texcoord t' = 1 - t
    ImagePtr        img = makeGradient(3, 3);
    TextureChunkPtr tex = makeTexture(img);
    beginEditCP(tex);
    tex->setScale(false);
    tex->setNPOTMatrixScale(TextureChunk::NPotTexScale_TT | TextureChunk::YFlip_TT);
    endEditCP(tex);

    tex->activate(action, 0);
    GLfloat m[16];
    glGetFloatv(GL_TEXTURE_MATRIX, m);
    // the window has NPOT textures, so only the flip applies
    EXPECT_FLOAT_EQ(m[0], 1.f);
    EXPECT_FLOAT_EQ(m[5], -1.f);
    EXPECT_FLOAT_EQ(m[13], 1.f);
    drawQuad();
    tex->deactivate(action, 0);
    glGetFloatv(GL_TEXTURE_MATRIX, m);
    EXPECT_FLOAT_EQ(m[5], 1.f);

    // the bottom row of the window shows the top row of the image
    EXPECT_EQ(pixel(5, 2), gradientTexel(0, 2));
    EXPECT_EQ(pixel(5, 61), gradientTexel(0, 0));

    subRefCP(tex);
    subRefCP(img);
}

TEST_F(TextureChunkGL, FloatVolumeIsSampledInAShader)
{
    // 4 x 4 x 4 RGBA floats, some beyond 1: only a float texture keeps them
    const Int32        n = 4;
    std::vector<float> data;
    for(Int32 z = 0; z < n; ++z)
        for(Int32 y = 0; y < n; ++y)
            for(Int32 x = 0; x < n; ++x)
            {
                data.push_back(0.5f * x);   // 0 ... 1.5
                data.push_back(0.5f * y);
                data.push_back(1.f + z);    // 1 ... 4
                data.push_back(1.f);
            }

    ImagePtr img = Image::create();
    addRefCP(img);
    img->set(Image::OSG_RGBA_PF, n, n, n, 1, 1, 0.0,
             reinterpret_cast<const UInt8 *>(data.data()), Image::OSG_FLOAT32_IMAGEDATA);
    EXPECT_EQ(img->getDimension(), 3);

    TextureChunkPtr tex = makeTexture(img);
    beginEditCP(tex);
    tex->setInternalFormat(GL_RGBA32F_ARB);
    tex->setWrapR(GL_CLAMP_TO_EDGE);
    endEditCP(tex);

    SHLChunkPtr shl = SHLChunk::create();
    addRefCP(shl);
    beginEditCP(shl);
    shl->setVertexProgram("void main()\n"
                          "{\n"
                          "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                          "    gl_Position = ftransform();\n"
                          "}\n");
    shl->setFragmentProgram("uniform sampler3D volume;\n"
                            "uniform float slice;\n"
                            "void main()\n"
                            "{\n"
                            "    vec4 v = texture3D(volume, vec3(gl_TexCoord[0].st, slice));\n"
                            "    gl_FragColor = vec4(v.r / 1.5, v.g / 1.5, v.b / 4.0, 1.0);\n"
                            "}\n");
    shl->setUniformParameter("volume", Int32(0));
    shl->setUniformParameter("slice", Real32(2.5f / n));   // slice z = 2
    endEditCP(shl);

    StatePtr state = State::create();
    addRefCP(state);
    state->addChunk(tex);
    state->addChunk(shl);

    state->activate(action);
    drawQuad();
    state->deactivate(action);
    writePNG("float_volume");

    GLint format = 0;
    glBindTexture(GL_TEXTURE_3D, win->getGLObjectId(tex->getGLId()));
    glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    glBindTexture(GL_TEXTURE_3D, 0);
    EXPECT_EQ(format, GL_RGBA32F_ARB);

    for(Int32 y = 0; y < n; ++y)
        for(Int32 x = 0; x < n; ++x)
        {
            RGBA want = {UInt8(std::lround(255 * (0.5f * x) / 1.5f)),
                         UInt8(std::lround(255 * (0.5f * y) / 1.5f)),
                         UInt8(std::lround(255 * 3.f / 4.f)), 255};
            EXPECT_TRUE(near(pixel(16 * x + 8, 16 * y + 8), want, 1)) << x << "," << y;
        }

    subRefCP(state);
    subRefCP(shl);
    subRefCP(tex);
    subRefCP(img);
}

TEST_F(TextureChunkGL, MipmapsComeFromTheImageOrFromTheDriver)
{
    // a full chain of 4 x 4, 2 x 2, 1 x 1, each level one grey value
    ImagePtr img = Image::create();
    addRefCP(img);
    img->set(Image::OSG_L_PF, 4, 4, 1, 3);
    ASSERT_EQ(img->getMipMapCount(), 3);
    for(UInt32 level = 0; level < 3; ++level)
    {
        UInt32 w, h, d;
        img->calcMipmapGeometry(level, w, h, d);
        std::memset(img->editData(level), 50 + 100 * level, w * h);
    }

    TextureChunkPtr tex = makeTexture(img, GL_NEAREST_MIPMAP_NEAREST);
    win->validateGLObject(tex->getGLId());
    GLuint name = win->getGLObjectId(tex->getGLId());
    glBindTexture(GL_TEXTURE_2D, name);
    UInt8 level1[4] = {0, 0, 0, 0};
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 1, GL_LUMINANCE, GL_UNSIGNED_BYTE, level1);
    EXPECT_EQ(level1[0], 150);
    EXPECT_EQ(level1[3], 150);

    // skipping half of the image's levels makes its level 1 the texture's 0
    beginEditCP(tex, TextureChunk::SkipMipMapLevelsFieldMask);
    tex->setSkipMipMapLevels(0.5f);
    endEditCP(tex, TextureChunk::SkipMipMapLevelsFieldMask);
    win->validateGLObject(tex->getGLId());
    GLint w = 0;
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &w);
    EXPECT_EQ(w, 2);
    UInt8 top[1] = {0};
    glGetTexImage(GL_TEXTURE_2D, 1, GL_LUMINANCE, GL_UNSIGNED_BYTE, top);
    EXPECT_EQ(top[0], 250);

    // one level only: the driver builds the chain
    ImagePtr single = makeGradient(4, 4);
    TextureChunkPtr generated = makeTexture(single, GL_LINEAR_MIPMAP_LINEAR);
    win->validateGLObject(generated->getGLId());
    glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(generated->getGLId()));
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &w);
    EXPECT_EQ(w, 1);
    glBindTexture(GL_TEXTURE_2D, 0);

    subRefCP(tex);
    subRefCP(img);
    subRefCP(generated);
    subRefCP(single);
}

TEST_F(TextureChunkGL, TheEnvironmentModeCombinesTexelAndColour)
{
    ImagePtr        img = makeGradient(1, 1);   // (20, 20, 200, 255)
    TextureChunkPtr tex = makeTexture(img);
    beginEditCP(tex, TextureChunk::EnvModeFieldMask);
    tex->setEnvMode(GL_MODULATE);
    endEditCP(tex, TextureChunk::EnvModeFieldMask);

    tex->activate(action, 0);
    glColor4f(1.f, 0.5f, 0.5f, 1.f);
    drawQuad();
    tex->deactivate(action, 0);
    EXPECT_TRUE(near(pixel(32, 32), RGBA{20, 10, 100, 255}, 1)) << pixel(32, 32);

    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_MODULATE);

    subRefCP(tex);
    subRefCP(img);
}

TEST_F(TextureChunkGL, SixteenBitHalfFloatAndOneDimensionalImagesKeepTheirValues)
{
    // 16-bit luminance into a 16-bit texture: exact values back
    ImagePtr l16 = Image::create();
    addRefCP(l16);
    UInt16 shorts[4] = {0, 1000, 40000, 65535};
    l16->set(Image::OSG_L_PF, 2, 2, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(shorts),
             Image::OSG_UINT16_IMAGEDATA);
    TextureChunkPtr t16 = makeTexture(l16);
    beginEditCP(t16);
    t16->setInternalFormat(GL_LUMINANCE16);
    endEditCP(t16);
    win->validateGLObject(t16->getGLId());
    UInt16 back16[4] = {1, 1, 1, 1};
    glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(t16->getGLId()));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_LUMINANCE, GL_UNSIGNED_SHORT, back16);
    for(int i = 0; i < 4; ++i)
        EXPECT_EQ(back16[i], shorts[i]);

    // half floats, with values beyond one
    ImagePtr half = Image::create();
    addRefCP(half);
    Real16 halves[8] = {Real16(0.5f), Real16(2.f),  Real16(-1.f), Real16(1.f),
                        Real16(3.f),  Real16(0.25f), Real16(8.f),  Real16(1.f)};
    half->set(Image::OSG_RGBA_PF, 2, 1, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(halves),
              Image::OSG_FLOAT16_IMAGEDATA);
    TextureChunkPtr th = makeTexture(half);
    beginEditCP(th);
    th->setInternalFormat(GL_RGBA16F_ARB);
    endEditCP(th);
    win->validateGLObject(th->getGLId());
    // two texels in one row: a 1-D texture
    GLuint name = win->getGLObjectId(th->getGLId());
    glBindTexture(GL_TEXTURE_1D, name);
    float backHalf[8];
    glGetTexImage(GL_TEXTURE_1D, 0, GL_RGBA, GL_FLOAT, backHalf);
    for(int i = 0; i < 8; ++i)
        EXPECT_FLOAT_EQ(backHalf[i], float(halves[i])) << i;
    glBindTexture(GL_TEXTURE_1D, 0);

    // a 1-D texture on a quad: texel by x
    ImagePtr        row  = makeGradient(4, 1);
    TextureChunkPtr t1d  = makeTexture(row);
    t1d->activate(action, 0);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_1D));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    drawQuad();
    t1d->deactivate(action, 0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_1D));
    for(Int32 x = 0; x < 4; ++x)
        EXPECT_EQ(pixel(16 * x + 8, 50), gradientTexel(x, 0));

    subRefCP(t16);
    subRefCP(l16);
    subRefCP(th);
    subRefCP(half);
    subRefCP(t1d);
    subRefCP(row);
}

TEST_F(TextureChunkGL, ChangeFromSwitchesTargetsAndLeavesEqualChunksAlone)
{
    ImagePtr        flat = makeGradient(2, 2), line = makeGradient(4, 1);
    TextureChunkPtr a = makeTexture(flat), b = makeTexture(line), c = makeTexture(flat);

    StatePtr first = State::create(), second = State::create();
    addRefCP(first);
    addRefCP(second);
    first->addChunk(a, 0);
    first->addChunk(c, 1);
    second->addChunk(b, 0);

    first->activate(action);
    second->changeFrom(action, first.getCPtr());

    // unit 0: the 2-D target went off, the 1-D one on with b's texture
    TextureChunk::activeTexture(win.getCPtr(), 0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_1D));
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_1D, &bound);
    EXPECT_EQ(GLuint(bound), win->getGLObjectId(b->getGLId()));
    // unit 1 was only in the old state: switched off
    TextureChunk::activeTexture(win.getCPtr(), 1);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));

    // a chunk changing from itself does nothing, not even a bind
    TextureChunk::activeTexture(win.getCPtr(), 0);
    glBindTexture(GL_TEXTURE_1D, 0);
    b->changeFrom(action, b.getCPtr(), 0);
    glGetIntegerv(GL_TEXTURE_BINDING_1D, &bound);
    EXPECT_EQ(bound, 0);

    second->deactivate(action);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_1D));

    subRefCP(first);
    subRefCP(second);
    subRefCP(a);
    subRefCP(b);
    subRefCP(c);
    subRefCP(flat);
    subRefCP(line);
}
