// ChunkMaterial and SimpleMaterial: slots requested per chunk, the state a
// material builds from them, transparency and drawing through a functor.
#include "OSGRecordingTestChunk.h"
#include "OSGSingleRecordingTestChunk.h"
#include "StateGLSupport.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGLog.h>
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
RecordingTestChunkPtr recording(const std::string &label)
{
    RecordingTestChunkPtr c = make<RecordingTestChunkPtr>();
    beginEditCP(c);
    c->setLabel(label);
    endEditCP(c);
    return c;
}

ChunkMaterialPtr makeMaterial(void)
{
    return make<ChunkMaterialPtr>();
}

/// Adds the chunks inside one edit of the chunk list, as applications do.
void addChunks(const ChunkMaterialPtr &mat, const std::vector<StateChunkPtr> &chunks,
               const std::vector<Int32> &slots = std::vector<Int32>())
{
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask);
    for(UInt32 i = 0; i < chunks.size(); ++i)
        mat->addChunk(chunks[i], i < slots.size() ? slots[i] : Int32(State::AutoSlotReplace));
    endEditCP(mat, ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask);
}

UInt32 textureSlot(const StatePtr &state, const TextureChunkPtr &tex)
{
    UInt32 cid = TextureChunk::getStaticClassId();
    for(UInt32 s = 0; s < osgMaxTexImages; ++s)
        if(state->getChunk(cid + s) == tex)
            return s;
    return 0xFFFFFFFF;
}

Action::ResultE drawnWith(DrawActionBase *)
{
    RecordingTestChunk::calls().push_back("draw");
    return Action::Continue;
}
} // namespace

TEST(ChunkMaterialTest, TheStateIsBuiltAtTheEndOfEachEdit)
{
    ChunkMaterialPtr mat = makeMaterial();
    EXPECT_EQ(mat->getState(), NullFC);   // never edited yet
    EXPECT_EQ(mat->getSortKey(), 0);
    EXPECT_EQ(mat->getRealSortKey(), 0);
    EXPECT_EQ(Material::NoStateSorting, 0x7fffffff);

    RecordingTestChunkPtr a = recording("A");
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    EXPECT_TRUE(mat->addChunk(a));
    EXPECT_EQ(mat->getState(), NullFC);   // addChunk opens no edit
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);

    StatePtr state = mat->getState();
    ASSERT_NE(state, NullFC);
    EXPECT_EQ(state->getChunk(RecordingTestChunk::getStaticClassId()), a);
    EXPECT_EQ(a.getRefCount(), 3);   // the test, the material, the state

    // any later edit rebuilds the same state object
    beginEditCP(mat, ChunkMaterial::SortKeyFieldMask);
    mat->setSortKey(3);
    endEditCP(mat, ChunkMaterial::SortKeyFieldMask);
    EXPECT_EQ(mat->getState(), state);
    EXPECT_EQ(mat->getRealSortKey(), 3);

    // a made state belongs to the caller
    StatePtr made = mat->makeState();
    EXPECT_NE(made, state);
    EXPECT_EQ(made.getRefCount(), 0);
    EXPECT_EQ(made->getChunk(RecordingTestChunk::getStaticClassId()), a);
    addRefCP(made);
    subRefCP(made);

    subRefCP(mat);
    EXPECT_EQ(a.getRefCount(), 1);
    subRefCP(a);
}

TEST(ChunkMaterialTest, AutomaticSlotsGiveTexturesConsecutiveUnitsInTheOrderAdded)
{
    // the back-position material: polygon, two textures, shader, depth, colour
    ChunkMaterialPtr  mat     = makeMaterial();
    PolygonChunkPtr   polygon = make<PolygonChunkPtr>();
    TextureChunkPtr   front = make<TextureChunkPtr>(), depthTex = make<TextureChunkPtr>();
    SHLChunkPtr       shl   = make<SHLChunkPtr>();
    DepthChunkPtr     depth = make<DepthChunkPtr>();
    ColorMaskChunkPtr color = make<ColorMaskChunkPtr>();
    addChunks(mat, {polygon, front, depthTex, shl, depth, color});

    StatePtr state = mat->getState();
    EXPECT_EQ(textureSlot(state, front), 0u);
    EXPECT_EQ(textureSlot(state, depthTex), 1u);
    EXPECT_EQ(state->getChunk(SHLChunk::getStaticClassId()), shl);
    EXPECT_EQ(state->getChunk(PolygonChunk::getStaticClassId()), polygon);
    EXPECT_EQ(state->getChunk(DepthChunk::getStaticClassId()), depth);
    EXPECT_EQ(state->getChunk(ColorMaskChunk::getStaticClassId()), color);
    EXPECT_EQ(mat->getMFSlots()->size(), 0u);   // no explicit slot, none stored

    subRefCP(mat);
    subRefCP(polygon);
    subRefCP(front);
    subRefCP(depthTex);
    subRefCP(shl);
    subRefCP(depth);
    subRefCP(color);
}

TEST(ChunkMaterialTest, ExplicitSlotsMixWithAutomaticOnesInOrder)
{
    TextureChunkPtr t[3] = {make<TextureChunkPtr>(), make<TextureChunkPtr>(),
                            make<TextureChunkPtr>()};
    SHLChunkPtr     shl = make<SHLChunkPtr>();

    // shader automatic, surface map on unit 1: unit 0 stays empty
    ChunkMaterialPtr a = makeMaterial();
    addChunks(a, {shl, t[0]}, {State::AutoSlotReplace, 1});
    ASSERT_EQ(a->getMFSlots()->size(), 2u);   // padded with -2 before the explicit slot
    EXPECT_EQ(a->getSlots(0), State::AutoSlotReplace);
    EXPECT_EQ(a->getSlots(1), 1);
    EXPECT_EQ(textureSlot(a->getState(), t[0]), 1u);
    EXPECT_EQ(a->getState()->getChunk(TextureChunk::getStaticClassId()), NullFC);

    // an automatic texture before an explicit slot 0 is replaced by it
    ChunkMaterialPtr b = makeMaterial();
    addChunks(b, {t[1], t[2]}, {State::AutoSlotReplace, 0});
    EXPECT_EQ(textureSlot(b->getState(), t[2]), 0u);
    EXPECT_EQ(textureSlot(b->getState(), t[1]), 0xFFFFFFFFu);

    // a second chunk of a one-slot class replaces the first in the state
    SHLChunkPtr      other = make<SHLChunkPtr>();
    ChunkMaterialPtr c     = makeMaterial();
    addChunks(c, {shl, other});
    EXPECT_EQ(c->getState()->getChunk(SHLChunk::getStaticClassId()), other);
    EXPECT_EQ(c->getMFChunks()->size(), 2u);

    // find: by object, by exact type and by effective slot
    EXPECT_EQ(a->find(t[0]), 1);
    EXPECT_EQ(a->find(t[1]), -1);
    EXPECT_EQ(a->find(TextureChunk::getClassType(), 1), t[0]);
    EXPECT_EQ(a->find(TextureChunk::getClassType(), 0), NullFC);
    EXPECT_EQ(b->find(TextureChunk::getClassType()), t[1]);
    EXPECT_EQ(b->find(TextureChunk::getClassType(), 0), t[1]);   // first by ordinal
    EXPECT_EQ(c->find(SHLChunk::getClassType(), 1), other);
    EXPECT_EQ(c->find(ShaderChunk::getClassType()), NullFC);     // exact types only

    subRefCP(a);
    subRefCP(b);
    subRefCP(c);
    for(int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(t[i].getRefCount(), 1);
        subRefCP(t[i]);
    }
    subRefCP(shl);
    subRefCP(other);
}

TEST(ChunkMaterialTest, SubChunkMatchesTheSlotAndClearChunksDropsEverything)
{
    ChunkMaterialPtr      mat = makeMaterial();
    RecordingTestChunkPtr a = recording("A"), b = recording("B");
    addChunks(mat, {a, b, a}, {State::AutoSlotReplace, 2, 1});

    {
        LogCapture cap;
        EXPECT_TRUE(mat->subChunk(b, 1));
        EXPECT_NE(cap.str().find("ChunkMaterial::subChunk("), std::string::npos);
        EXPECT_NE(cap.str().find("with slot 1"), std::string::npos) << cap.str();
    }
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    EXPECT_FALSE(mat->subChunk(a, 1));   // the second a, in slot 1
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);
    ASSERT_EQ(mat->getMFChunks()->size(), 2u);
    EXPECT_EQ(mat->getSlots(1), 2);
    EXPECT_EQ(a.getRefCount(), 3);   // test, material, state

    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->clearChunks();
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);
    EXPECT_EQ(mat->getMFChunks()->size(), 0u);
    EXPECT_EQ(mat->getMFSlots()->size(), 0u);
    EXPECT_EQ(a.getRefCount(), 1);
    EXPECT_EQ(b.getRefCount(), 1);
    EXPECT_EQ(mat->getState()->chunkPresent(a), false);

    subRefCP(mat);
    subRefCP(a);
    subRefCP(b);
}

TEST(ChunkMaterialTest, TransparencyIsDetectedFromTheChunksUnlessForced)
{
    ChunkMaterialPtr mat   = makeMaterial();
    BlendChunkPtr    blend = make<BlendChunkPtr>();
    addChunks(mat, {blend});
    EXPECT_FALSE(mat->isTransparent());

    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);
    EXPECT_TRUE(mat->isTransparent());

    beginEditCP(mat, ChunkMaterial::TransparencyModeFieldMask);
    mat->setTransparencyMode(Material::TransparencyForceOpaque);
    endEditCP(mat, ChunkMaterial::TransparencyModeFieldMask);
    EXPECT_FALSE(mat->isTransparent());

    ChunkMaterialPtr empty = makeMaterial();
    beginEditCP(empty, ChunkMaterial::TransparencyModeFieldMask);
    empty->setTransparencyMode(Material::TransparencyForceTransparent);
    endEditCP(empty, ChunkMaterial::TransparencyModeFieldMask);
    EXPECT_TRUE(empty->isTransparent());

    subRefCP(mat);
    subRefCP(empty);
    subRefCP(blend);
}

TEST(ChunkMaterialTest, DrawActivatesAFreshStateAroundTheFunctor)
{
    ChunkMaterialPtr      mat = makeMaterial();
    RecordingTestChunkPtr a   = recording("A");
    addChunks(mat, {a}, {1});

    RecordingTestChunk::calls().clear();
    Material::DrawFunctor f = osgTypedFunctionFunctor1Ptr<Action::ResultE, DrawActionBase>(&drawnWith);
    mat->draw(f, NULL);
    std::vector<std::string> expected = {"activate A 1", "draw", "deactivate A 1"};
    EXPECT_EQ(RecordingTestChunk::calls(), expected);
    EXPECT_EQ(a.getRefCount(), 3);   // the fresh state is gone again

    subRefCP(mat);
    subRefCP(a);
}

TEST(SimpleMaterialTest, ColoursBecomeAMaterialChunkAndTransparencyABlendChunk)
{
    SimpleMaterialPtr mat = make<SimpleMaterialPtr>();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(1, 0.5f, 0.25f));
    mat->setTransparency(0.25f);
    mat->setLit(false);
    endEditCP(mat);

    StatePtr state = mat->getState();
    ASSERT_NE(state, NullFC);
    MaterialChunkPtr chunk =
        MaterialChunkPtr::dcast(state->getChunk(MaterialChunk::getStaticClassId()));
    ASSERT_NE(chunk, NullFC);
    EXPECT_EQ(chunk->getDiffuse(), Color4f(1, 0.5f, 0.25f, 0.75f));
    EXPECT_FALSE(chunk->getLit());
    BlendChunkPtr blend = BlendChunkPtr::dcast(state->getChunk(BlendChunk::getStaticClassId()));
    ASSERT_NE(blend, NullFC);
    EXPECT_EQ(blend->getDestFactor(), GLenum(GL_ONE_MINUS_SRC_ALPHA));
    EXPECT_TRUE(mat->isTransparent());

    beginEditCP(mat);
    mat->setTransparency(0.f);
    endEditCP(mat);
    EXPECT_FALSE(mat->isTransparent());
    EXPECT_FALSE(state->chunkPresent(BlendChunk::getStaticClassId()));

    subRefCP(mat);
}

namespace
{
class ChunkMaterialGL : public statetest::GLTest
{
};
} // namespace

TEST_F(ChunkMaterialGL, AMaterialStateDrawsItsTexturesOnTheirUnits)
{
    // two one-coloured 2 x 2 textures (a 1 x 1 image would make a 1-D
    // texture) on units 0 and 1, combined by a shader
    ImagePtr red = Image::create(), blue = Image::create();
    addRefCP(red);
    addRefCP(blue);
    UInt8 r[16], b[16];
    for(int i = 0; i < 4; ++i)
    {
        r[4 * i] = 255, r[4 * i + 1] = 0, r[4 * i + 2] = 0, r[4 * i + 3] = 255;
        b[4 * i] = 0, b[4 * i + 1] = 0, b[4 * i + 2] = 255, b[4 * i + 3] = 255;
    }
    red->set(Image::OSG_RGBA_PF, 2, 2, 1, 1, 1, 0.0, r);
    blue->set(Image::OSG_RGBA_PF, 2, 2, 1, 1, 1, 0.0, b);

    TextureChunkPtr t0 = make<TextureChunkPtr>(), t1 = make<TextureChunkPtr>();
    beginEditCP(t0);
    t0->setImage(red);
    t0->setMinFilter(GL_NEAREST);
    endEditCP(t0);
    beginEditCP(t1);
    t1->setImage(blue);
    t1->setMinFilter(GL_NEAREST);
    endEditCP(t1);

    SHLChunkPtr shl = make<SHLChunkPtr>();
    beginEditCP(shl);
    shl->setFragmentProgram("uniform sampler2D first;\n"
                            "uniform sampler2D second;\n"
                            "void main() { gl_FragColor = texture2D(first, vec2(0.5))\n"
                            "    + 0.5 * texture2D(second, vec2(0.5)); }\n");
    shl->setUniformParameter("first", Int32(0));
    shl->setUniformParameter("second", Int32(1));
    endEditCP(shl);

    ChunkMaterialPtr mat = makeMaterial();
    addChunks(mat, {shl, t0, t1});

    mat->getState()->activate(action);
    drawQuad();
    mat->getState()->deactivate(action);
    EXPECT_TRUE(statetest::near(pixel(32, 32), statetest::RGBA{255, 0, 128, 255}, 1))
        << pixel(32, 32);

    subRefCP(mat);
    subRefCP(shl);
    subRefCP(t0);
    subRefCP(t1);
    subRefCP(red);
    subRefCP(blue);
}
