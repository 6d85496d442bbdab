// The small fixed-function chunks: what they switch on, what their
// deactivation restores, and what they render.
#include "StateGLSupport.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGState.h>

using namespace osg;
using namespace statetest;

namespace
{
GLint getInt(GLenum what)
{
    GLint v = 0;
    glGetIntegerv(what, &v);
    return v;
}

class FixedFunctionGL : public GLTest
{
};
} // namespace

TEST(FixedFunctionChunkTest, TransparencyComesFromBlendDestinationAndDiffuseAlpha)
{
    BlendChunkPtr blend = make<BlendChunkPtr>();
    EXPECT_FALSE(blend->isTransparent());
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);   // only the destination factor counts
    endEditCP(blend);
    EXPECT_FALSE(blend->isTransparent());
    beginEditCP(blend);
    blend->setDestFactor(GL_ONE);
    endEditCP(blend);
    EXPECT_TRUE(blend->isTransparent());

    MaterialChunkPtr mat = make<MaterialChunkPtr>();
    EXPECT_FALSE(mat->isTransparent());
    beginEditCP(mat);
    mat->setDiffuse(Color4f(1, 1, 1, 0.999f));
    endEditCP(mat);
    EXPECT_TRUE(mat->isTransparent());

    DepthChunkPtr depth = make<DepthChunkPtr>();
    EXPECT_FALSE(depth->isTransparent());

    // the class names, including the odd one out
    EXPECT_STREQ(ColorMaskChunk::getStaticClass()->getName(), "Color");
    EXPECT_STREQ(LightChunk::getStaticClass()->getName(), "Light");
    EXPECT_EQ(LightChunk::getStaticClass()->getNumSlots(), 8);

    subRefCP(blend);
    subRefCP(mat);
    subRefCP(depth);
}

TEST_F(FixedFunctionGL, DepthChunkSetsAndRestoresTheDepthState)
{
    DepthChunkPtr depth = make<DepthChunkPtr>();
    beginEditCP(depth);
    depth->setEnable(false);
    depth->setFunc(GL_GREATER);
    depth->setNear(0.25f);
    depth->setFar(0.75f);
    depth->setReadOnly(true);
    endEditCP(depth);

    glEnable(GL_DEPTH_TEST);
    depth->activate(action);
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_EQ(getInt(GL_DEPTH_FUNC), GL_GREATER);
    EXPECT_EQ(getInt(GL_DEPTH_WRITEMASK), GL_FALSE);
    GLfloat range[2];
    glGetFloatv(GL_DEPTH_RANGE, range);
    EXPECT_FLOAT_EQ(range[0], 0.25f);
    EXPECT_FLOAT_EQ(range[1], 0.75f);

    depth->deactivate(action);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_EQ(getInt(GL_DEPTH_FUNC), GL_LEQUAL);
    EXPECT_EQ(getInt(GL_DEPTH_WRITEMASK), GL_TRUE);
    glGetFloatv(GL_DEPTH_RANGE, range);
    EXPECT_FLOAT_EQ(range[1], 1.f);
    glDisable(GL_DEPTH_TEST);

    subRefCP(depth);
}

TEST_F(FixedFunctionGL, PolygonChunkChangesOnlyWhatDiffers)
{
    PolygonChunkPtr cull = make<PolygonChunkPtr>(), lines = make<PolygonChunkPtr>();
    beginEditCP(cull);
    cull->setCullFace(GL_BACK);
    cull->setFrontFace(GL_CW);
    cull->setOffsetFill(true);
    cull->setOffsetFactor(1.f);
    endEditCP(cull);
    beginEditCP(lines);
    lines->setFrontMode(GL_LINE);
    endEditCP(lines);

    cull->activate(action);
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_EQ(getInt(GL_CULL_FACE_MODE), GL_BACK);
    EXPECT_EQ(getInt(GL_FRONT_FACE), GL_CW);
    EXPECT_TRUE(glIsEnabled(GL_POLYGON_OFFSET_FILL));

    // the quad is counter-clockwise, i.e. a back face now: culled
    drawQuad();
    EXPECT_EQ(pixel(32, 32), (RGBA{0, 0, 0, 0}));

    lines->changeFrom(action, cull.getCPtr());
    EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
    EXPECT_EQ(getInt(GL_FRONT_FACE), GL_CCW);
    EXPECT_FALSE(glIsEnabled(GL_POLYGON_OFFSET_FILL));
    GLint modes[2];
    glGetIntegerv(GL_POLYGON_MODE, modes);
    EXPECT_EQ(modes[0], GL_LINE);

    lines->deactivate(action);
    glGetIntegerv(GL_POLYGON_MODE, modes);
    EXPECT_EQ(modes[0], GL_FILL);

    subRefCP(cull);
    subRefCP(lines);
}

TEST_F(FixedFunctionGL, ColorMaskChunkKeepsChannelsFromBeingWritten)
{
    ColorMaskChunkPtr mask = make<ColorMaskChunkPtr>();
    beginEditCP(mask);
    mask->setMaskG(false);
    mask->setMaskA(false);
    endEditCP(mask);

    mask->activate(action);
    glColor4f(1, 1, 1, 1);
    drawQuad();
    mask->deactivate(action);
    EXPECT_EQ(pixel(10, 10), (RGBA{255, 0, 255, 0}));

    GLboolean m[4];
    glGetBooleanv(GL_COLOR_WRITEMASK, m);
    EXPECT_TRUE(m[0] && m[1] && m[2] && m[3]);

    subRefCP(mask);
}

TEST_F(FixedFunctionGL, BlendChunkBlendsAndTestsAlpha)
{
    BlendChunkPtr blend = make<BlendChunkPtr>();
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    blend->setAlphaFunc(GL_GREATER);
    blend->setAlphaValue(0.1f);
    endEditCP(blend);

    glColor4f(0, 0, 1, 1);
    drawQuad();

    blend->activate(action);
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_TRUE(glIsEnabled(GL_ALPHA_TEST));
    glColor4f(1, 0, 0, 0.5f);
    drawQuad(-1, -1, 0, 1);   // left half: blended half and half
    glColor4f(1, 0, 0, 0.05f);
    drawQuad(0, -1, 1, 1);    // right half: fails the alpha test
    blend->deactivate(action);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));

    EXPECT_TRUE(near(pixel(10, 32), RGBA{128, 0, 127, 191}, 1));
    EXPECT_EQ(pixel(50, 32), (RGBA{0, 0, 255, 255}));

    // separate alpha factors and the equation
    BlendChunkPtr add = make<BlendChunkPtr>();
    beginEditCP(add);
    add->setSrcFactor(GL_ONE);
    add->setDestFactor(GL_ONE);
    add->setAlphaSrcFactor(GL_ZERO);
    add->setAlphaDestFactor(GL_ZERO);
    add->setEquation(GL_FUNC_REVERSE_SUBTRACT);
    endEditCP(add);
    add->changeFrom(action, blend.getCPtr());
    EXPECT_EQ(getInt(GL_BLEND_EQUATION_RGB), GL_FUNC_REVERSE_SUBTRACT);
    EXPECT_EQ(getInt(GL_BLEND_SRC_ALPHA), GL_ZERO);
    EXPECT_EQ(getInt(GL_BLEND_DST_RGB), GL_ONE);
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
    add->deactivate(action);
    EXPECT_EQ(getInt(GL_BLEND_EQUATION_RGB), GL_FUNC_ADD);
    glBlendFunc(GL_ONE, GL_ZERO);

    subRefCP(blend);
    subRefCP(add);
}

TEST_F(FixedFunctionGL, MaterialAndLightChunksLightAQuad)
{
    // a directional light from +z onto a quad facing +z: colour =
    // global ambient (0.2) * material ambient + diffuse * N.L
    LightChunkPtr light = make<LightChunkPtr>();
    beginEditCP(light);
    light->setDiffuse(Color4f(1, 1, 1, 1));
    light->setSpecular(Color4f(0, 0, 0, 1));
    light->setPosition(Vec4f(0, 0, 1, 0));
    endEditCP(light);

    MaterialChunkPtr mat = make<MaterialChunkPtr>();
    beginEditCP(mat);
    mat->setDiffuse(Color4f(0.5f, 0.25f, 0.f, 1.f));
    mat->setAmbient(Color4f(0.5f, 0.5f, 0.5f, 1.f));
    mat->setSpecular(Color4f(0, 0, 0, 1));
    mat->setColorMaterial(GL_NONE);
    endEditCP(mat);

    StatePtr state = State::create();
    addRefCP(state);
    state->addChunk(light, 2);   // the slot is the light number
    state->addChunk(mat);

    state->activate(action);
    EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
    drawQuad();
    state->deactivate(action);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));

    EXPECT_TRUE(near(pixel(32, 32), RGBA{153, 89, 26, 255}, 1)) << pixel(32, 32);

    // unlit: the diffuse colour is the current colour
    beginEditCP(mat);
    mat->setLit(false);
    endEditCP(mat);
    mat->activate(action);
    drawQuad();
    mat->deactivate(action);
    EXPECT_TRUE(near(pixel(32, 32), RGBA{128, 64, 0, 255}, 1)) << pixel(32, 32);

    subRefCP(state);
    subRefCP(light);
    subRefCP(mat);
}
