// Field ids, names and defaults that files, the wire format and subclasses
// in other libraries rely on.
#include "StateGLSupport.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>

#include <gtest/gtest.h>

using namespace osg;
using statetest::make;

namespace
{
/// The id under which type registers the field name (0 if it doesn't).
UInt32 idOf(const FieldContainerType &type, const char *name)
{
    const FieldDescription *desc = type.findFieldDescription(name);
    return desc != NULL ? desc->getFieldId() : 0;
}
} // namespace

TEST(FieldLayoutTest, IdsFollowTheClassHierarchy)
{
    EXPECT_EQ(idOf(StateChunk::getClassType(), "ignore"), 3u);
    EXPECT_EQ(idOf(State::getClassType(), "chunks"), 1u);
    EXPECT_EQ(idOf(Material::getClassType(), "sortKey"), 2u);
    EXPECT_EQ(idOf(Material::getClassType(), "transparencyMode"), 3u);
    EXPECT_EQ(idOf(ChunkMaterial::getClassType(), "chunks"), 4u);
    EXPECT_EQ(idOf(ChunkMaterial::getClassType(), "slots"), 5u);
    EXPECT_EQ(UInt32(ChunkMaterial::NextFieldId), 6u);
    EXPECT_EQ(idOf(SimpleMaterial::getClassType(), "ambient"), 6u);
    EXPECT_EQ(idOf(SimpleMaterial::getClassType(), "colorMaterial"), 13u);

    const FieldContainerType &tex = TextureChunk::getClassType();
    EXPECT_EQ(idOf(tex, "image"), 4u);
    EXPECT_EQ(idOf(tex, "envOperand2Alpha"), 31u);
    EXPECT_EQ(idOf(tex, "GLId"), 32u);
    EXPECT_EQ(idOf(tex, "IgnoreGLForAspect"), 33u);
    EXPECT_EQ(idOf(tex, "target"), 45u);
    EXPECT_EQ(idOf(tex, "dirtyMinX"), 47u);
    EXPECT_EQ(idOf(tex, "dirtyMaxZ"), 52u);
    EXPECT_EQ(idOf(tex, "NPOTMatrixScale"), 56u);
    EXPECT_EQ(idOf(tex, "skipMipMapLevels"), 57u);
    EXPECT_EQ(UInt32(TextureChunk::NextFieldId), 58u);
    EXPECT_EQ(TextureChunk::NPOTMatrixScaleFieldMask, BitVector(0x100000000000000ULL));
    EXPECT_TRUE(tex.findFieldDescription("GLId")->isInternal());

    const FieldContainerType &shl = SHLChunk::getClassType();
    EXPECT_EQ(idOf(shl, "parameters"), 4u);
    EXPECT_EQ(idOf(shl, "vertexProgram"), 5u);
    EXPECT_EQ(idOf(shl, "geometryProgram"), 7u);
    EXPECT_EQ(idOf(shl, "cgFrontEnd"), 8u);
    EXPECT_EQ(idOf(shl, "GLId"), 12u);
    EXPECT_EQ(idOf(shl, "UnknownParameterWarning"), 14u);
    EXPECT_EQ(UInt32(SHLChunk::NextFieldId), 15u);

    EXPECT_EQ(UInt32(DepthChunk::NextFieldId), 9u);
    EXPECT_EQ(idOf(DepthChunk::getClassType(), "readOnly"), 8u);
    EXPECT_EQ(UInt32(PolygonChunk::NextFieldId), 15u);
    EXPECT_EQ(idOf(PolygonChunk::getClassType(), "stipple"), 14u);
    EXPECT_EQ(UInt32(ColorMaskChunk::NextFieldId), 8u);
    EXPECT_EQ(UInt32(BlendChunk::NextFieldId), 12u);
    EXPECT_EQ(idOf(BlendChunk::getClassType(), "alphaDestFactor"), 11u);
    EXPECT_EQ(UInt32(MaterialChunk::NextFieldId), 18u);
    EXPECT_EQ(idOf(MaterialChunk::getClassType(), "backColorMaterial"), 17u);
}

TEST(FieldLayoutTest, DefaultsMatchOpenSG)
{
    TextureChunkPtr tex = make<TextureChunkPtr>();
    EXPECT_EQ(tex->getMinFilter(), GLenum(GL_LINEAR_MIPMAP_LINEAR));
    EXPECT_EQ(tex->getMagFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(tex->getWrapS(), GLenum(GL_REPEAT));
    EXPECT_EQ(tex->getWrapR(), GLenum(GL_REPEAT));
    EXPECT_EQ(tex->getEnvMode(), GLenum(GL_REPLACE));
    EXPECT_EQ(tex->getEnvSource1RGB(), GLenum(GL_PREVIOUS_EXT));
    EXPECT_TRUE(tex->getScale());
    EXPECT_EQ(tex->getTarget(), GLenum(GL_NONE));
    EXPECT_EQ(tex->getIgnoreGLForAspect(), -1);
    EXPECT_EQ(tex->getDirtyMinX(), -1);
    EXPECT_FLOAT_EQ(tex->getPriority(), 1.f);
    EXPECT_FALSE(tex->isTransparent());

    SHLChunkPtr shl = make<SHLChunkPtr>();
    EXPECT_TRUE(shl->getUnknownParameterWarning());
    EXPECT_EQ(shl->getIgnoreGLForAspect(), -1);
    EXPECT_STREQ(shl->getClass()->getName(), "SHL");

    DepthChunkPtr depth = make<DepthChunkPtr>();
    EXPECT_EQ(depth->getFunc(), GLenum(GL_LEQUAL));
    EXPECT_FLOAT_EQ(depth->getNear(), -1.f);

    BlendChunkPtr blend = make<BlendChunkPtr>();
    EXPECT_EQ(blend->getSrcFactor(), GLenum(GL_ONE));
    EXPECT_EQ(blend->getAlphaSrcFactor(), GLenum(OSG_GL_UNUSED));

    MaterialChunkPtr mat = make<MaterialChunkPtr>();
    EXPECT_EQ(mat->getAmbient(), Color4f(0.2f, 0.2f, 0.2f, 1.f));
    EXPECT_EQ(mat->getBackDiffuse(), Color4f(1, 1, 1, 0));
    EXPECT_FLOAT_EQ(mat->getShininess(), 10.f);

    SimpleMaterialPtr simple = make<SimpleMaterialPtr>();
    EXPECT_FLOAT_EQ(simple->getShininess(), 1.f);
    EXPECT_TRUE(simple->getLit());
    EXPECT_EQ(simple->getColorMaterial(), GLenum(GL_DIFFUSE));

    subRefCP(tex);
    subRefCP(shl);
    subRefCP(depth);
    subRefCP(blend);
    subRefCP(mat);
    subRefCP(simple);
}
