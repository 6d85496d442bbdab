// PermutationSHLChunk: the permutation that runs is proven by pixels of a
// probe shader whose colour depends only on the state defines (light sets
// of 0 to 9 lights, fog modes, stereo eyes, nested decorators); the cache
// makes one SHLChunk per distinct state and keeps it; program, prefix and
// parameter changes rebuild or reuse as they should; uniforms reach every
// permutation; the key's exact text; bad input (compile errors of one
// permutation, empty programs, NullFC and unknown parameters, a chunk of
// another class in changeFrom) leaves a log line and a working chunk.
#include "ShaderTestSupport.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFogChunk.h>
#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGWrappingTestCameraDecorator.h>

#include <sstream>

using namespace osg;
using namespace wintest;
using namespace shadertest;

namespace
{

const char *ProbeVertex = "void main() { gl_Position = ftransform(); }\n";

// red: 16 x light count; green: the eight light bits; blue: 64 x (eye + 1)
// + 16 x fog, plus 8 when the mask define disagrees with the light bits.
const char *ProbeFragment = R"(
#define LIGHT_BITS (OSG_LIGHT_0_ACTIVE + 2 * OSG_LIGHT_1_ACTIVE + 4 * OSG_LIGHT_2_ACTIVE + 8 * OSG_LIGHT_3_ACTIVE + 16 * OSG_LIGHT_4_ACTIVE + 32 * OSG_LIGHT_5_ACTIVE + 64 * OSG_LIGHT_6_ACTIVE + 128 * OSG_LIGHT_7_ACTIVE)
#if OSG_ACTIVE_LIGHTS_MASK == LIGHT_BITS
#define MASK_FLAG 0
#else
#define MASK_FLAG 8
#endif
void main()
{
    gl_FragColor = vec4(float(16 * OSG_ACTIVE_LIGHTS_COUNT) / 255.0,
                        float(LIGHT_BITS) / 255.0,
                        float(64 * (OSG_STEREO_LEFT_EYE + 1) + 16 * OSG_FOG + MASK_FLAG) / 255.0,
                        1.0);
}
)";

RGBA probe(UInt32 count, UInt32 bits, Int32 eye, Int32 fog, bool maskAgrees = true)
{
    return RGBA{UInt8(16 * count), UInt8(bits), UInt8(64 * (eye + 1) + 16 * fog + (maskAgrees ? 0 : 8)),
                255};
}

/// The state block of no lights, no fog and no stereo.
const char *PlainBlock = "#define OSG_LIGHT_0_ACTIVE 0\n"
                         "#define OSG_LIGHT_1_ACTIVE 0\n"
                         "#define OSG_LIGHT_2_ACTIVE 0\n"
                         "#define OSG_LIGHT_3_ACTIVE 0\n"
                         "#define OSG_LIGHT_4_ACTIVE 0\n"
                         "#define OSG_LIGHT_5_ACTIVE 0\n"
                         "#define OSG_LIGHT_6_ACTIVE 0\n"
                         "#define OSG_LIGHT_7_ACTIVE 0\n"
                         "#define OSG_ACTIVE_LIGHTS_COUNT 0\n"
                         "#define OSG_ACTIVE_LIGHTS_MASK 0\n"
                         "#define OSG_STEREO_LEFT_EYE -1\n"
                         "#define OSG_FOG 0\n";

class PermutationFrame : public ShaderFrame
{
  protected:
    PermutationSHLChunkPtr makeChunk(const char *vertex, const char *fragment)
    {
        PermutationSHLChunkPtr chunk = PermutationSHLChunk::create();
        keep(chunk);
        beginEditCP(chunk);
        chunk->setVertexProgram(vertex);
        chunk->setFragmentProgram(fragment);
        endEditCP(chunk);
        return chunk;
    }

    PermutationSHLChunkPtr probeChunk(void) { return makeChunk(ProbeVertex, ProbeFragment); }

    FogChunkPtr fog(GLenum mode)
    {
        FogChunkPtr f = FogChunk::create();
        beginEditCP(f);
        f->setMode(mode);
        endEditCP(f);
        return f;
    }

    /// A port over [l, r] of the window seen through camera.
    void portThrough(const CameraPtr &cam, Real32 l, Real32 r)
    {
        ViewportPtr vp = port(l, r, 0.f, 1.f, solid(Grey));
        beginEditCP(vp);
        vp->setCamera(cam);
        endEditCP(vp);
    }

    ShearedStereoCameraDecoratorPtr stereo(bool left)
    {
        ShearedStereoCameraDecoratorPtr deco = ShearedStereoCameraDecorator::create();
        keep(deco);
        beginEditCP(deco);
        deco->setDecoratee(camera);
        deco->setLeftEye(left);
        endEditCP(deco);
        return deco;
    }

    /// The key text of the permutation parameters.
    static std::string parameterDefines(const PermutationSHLChunkPtr &chunk)
    {
        std::stringstream s;
        chunk->appendPermutationParameters(s);
        return s.str();
    }

    /// The changes to the parameters of SHLChunks recorded since the list
    /// was last cleared.
    static UInt32 parameterCopies(void)
    {
        ChangeList *list = Thread::getCurrentChangeList();
        UInt32      n    = 0;
        for(ChangeList::changed_const_iterator it = list->beginChanged(); it != list->endChanged();
            ++it)
        {
            FieldContainerPtr fc = FieldContainerFactory::the()->getContainer(it->first);
            if(fc != NullFC && fc->getType() == SHLChunk::getClassType() &&
               (it->second & ShaderParameterChunk::ParametersFieldMask))
                ++n;
        }
        return n;
    }
};

// --- which permutation runs ----------------------------------------------------------------

TEST_F(PermutationFrame, LightSetsPickTheirPermutation)
{
    addPlane(material({probeChunk()}));

    const UInt32 counts[] = {0, 1, 3, 8};
    for(UInt32 n : counts)
    {
        setLightCount(n);
        frame();
        EXPECT_EQ(pixel(32, 24), probe(n, (1u << n) - 1, -1, 0)) << n << " lights";
    }
}

TEST_F(PermutationFrame, NineLightsCountEightAndKeepWorking)
{
    addPlane(material({probeChunk()}));
    setLightCount(9);

    std::string log = frameLog();
    EXPECT_NE(log.find("maximum light source limit is 8"), std::string::npos) << log;
    // the ninth light is dropped: eight bits, and the mask agrees with them
    EXPECT_EQ(pixel(32, 24), probe(8, 255, -1, 0));

    setLightCount(2);
    frame();
    EXPECT_EQ(pixel(32, 24), probe(2, 3, -1, 0));
}

TEST_F(PermutationFrame, FogModeOfEachObject)
{
    // the fog chunk's class comes first in a state, so the shader chunk
    // sees the fog of its own material
    ASSERT_LT(FogChunk::getStaticClassId(), SHLChunk::getStaticClassId());

    PermutationSHLChunkPtr chunk = probeChunk();
    struct Case
    {
        GLenum mode;
        Int32  define;
    };
    const Case cases[] = {{GL_LINEAR, 1}, {GL_EXP, 2}, {GL_EXP2, 3}};
    for(const Case &c : cases)
    {
        for(int fogFirst = 0; fogFirst < 2; ++fogFirst)
        {
            SCOPED_TRACE(testing::Message() << "mode " << c.define << ", fog first " << fogFirst);
            beginEditCP(content);
            while(content->getNChildren() > 0)
                content->subChild(content->getChild(0));
            endEditCP(content);

            ChunkMaterialPtr foggy = material({fog(c.mode), chunk});
            ChunkMaterialPtr clear = material({chunk});
            if(fogFirst)
            {
                addPlane(foggy, -1.f, -2.f, 2.f, 4.f);
                addPlane(clear, 1.f, -2.f, 2.f, 4.f);
            }
            else
            {
                addPlane(clear, 1.f, -2.f, 2.f, 4.f);
                addPlane(foggy, -1.f, -2.f, 2.f, 4.f);
            }
            frame();
            EXPECT_EQ(pixel(16, 24), probe(0, 0, -1, c.define));
            EXPECT_EQ(pixel(48, 24), probe(0, 0, -1, 0));
        }
    }
}

TEST_F(PermutationFrame, StereoEyesThroughDecorators)
{
    addPlane(material({probeChunk()}));

    // left eye in the left half, right eye (wrapped in another decorator)
    // in the right half
    beginEditCP(win);
    win->subPort(mainPort);
    endEditCP(win);
    portThrough(stereo(true), 0.f, 0.5f);

    WrappingTestCameraDecoratorPtr wrapper = WrappingTestCameraDecorator::create();
    keep(wrapper);
    beginEditCP(wrapper);
    wrapper->setDecoratee(stereo(false));
    endEditCP(wrapper);
    portThrough(wrapper, 0.5f, 1.f);

    frame();
    EXPECT_EQ(pixel(16, 24), probe(0, 0, 1, 0));
    EXPECT_EQ(pixel(48, 24), probe(0, 0, 0, 0));

    // a decorator that is no stereo decorator, over a plain camera: mono
    WrappingTestCameraDecoratorPtr plain = WrappingTestCameraDecorator::create();
    keep(plain);
    beginEditCP(plain);
    plain->setDecoratee(camera);
    endEditCP(plain);
    beginEditCP(wrapper);
    wrapper->setDecoratee(plain);
    endEditCP(wrapper);
    frame();
    EXPECT_EQ(pixel(48, 24), probe(0, 0, -1, 0));
}

TEST_F(PermutationFrame, StateBlockText)
{
    PermutationSHLChunkPtr chunk = probeChunk();

    // an action without camera and viewport: mono
    std::unique_ptr<RenderAction> bare(RenderAction::create());
    std::stringstream              plain;
    chunk->appendOSGPermutationParameters(plain, bare.get());
    EXPECT_EQ(plain.str(), PlainBlock);

    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_EXP2);
    std::stringstream foggy;
    chunk->appendOSGPermutationParameters(foggy, bare.get());
    glDisable(GL_FOG);
    std::string expected = PlainBlock;
    expected.replace(expected.size() - 2, 1, "3");
    EXPECT_EQ(foggy.str(), expected);

    // and again from the cache
    std::stringstream again;
    chunk->appendOSGPermutationParameters(again, bare.get());
    EXPECT_EQ(again.str(), PlainBlock);
}

// --- the cache ----------------------------------------------------------------------------------

TEST_F(PermutationFrame, OneSHLChunkPerDistinctState)
{
    addPlane(material({probeChunk()}));
    const UInt32 before = countSHLChunks();

    frame();
    EXPECT_EQ(countSHLChunks(), before + 1);
    frame();
    EXPECT_EQ(countSHLChunks(), before + 1) << "the same state again";

    setLightCount(2);
    frame();
    EXPECT_EQ(countSHLChunks(), before + 2);
    EXPECT_EQ(pixel(32, 24), probe(2, 3, -1, 0));

    setLightCount(0);
    frame();
    EXPECT_EQ(countSHLChunks(), before + 2) << "the first state comes from the cache";
    EXPECT_EQ(pixel(32, 24), probe(0, 0, -1, 0));
}

TEST_F(PermutationFrame, PermutationParametersPickAndKeepPermutations)
{
    const char *fragment = R"(
#ifndef USE_GREEN
#define USE_GREEN 0
#endif
void main()
{
#if USE_GREEN
    gl_FragColor = vec4(float(LEVEL) / 255.0, 1.0, 0.0, 1.0);
#else
    gl_FragColor = vec4(float(LEVEL) / 255.0, 0.0, 0.0, 1.0);
#endif
}
)";
    PermutationSHLChunkPtr chunk = makeChunk(ProbeVertex, fragment);
    addPlane(material({chunk}));

    // a string that ends its line, then a bool
    ShaderParameterBoolPtr green = ShaderParameterBool::create();
    beginEditCP(green);
    green->setName("USE_GREEN");
    green->setValue(true);
    endEditCP(green);
    ASSERT_TRUE(chunk->setPermutationParameter("LEVEL", "40\n"));
    chunk->getPermutationParameters().push_back(green);
    addRefCP(green);
    EXPECT_EQ(parameterDefines(chunk), "#define LEVEL 40\n#define USE_GREEN 1");

    const UInt32 before   = countSHLChunks();
    auto         setGreen = [&](bool on) {
        beginEditCP(green, ShaderParameterBool::ValueFieldMask);
        green->setValue(on);
        endEditCP(green, ShaderParameterBool::ValueFieldMask);
        frame();
        EXPECT_EQ(pixel(32, 24), (RGBA{40, UInt8(on ? 255 : 0), 0, 255}));
    };
    setGreen(true);
    setGreen(false);
    EXPECT_EQ(countSHLChunks(), before + 2) << "the old permutation stays";
    setGreen(true);
    EXPECT_EQ(countSHLChunks(), before + 2) << "and serves again";

    std::string value;
    EXPECT_TRUE(chunk->getPermutationParameter("LEVEL", value));
    EXPECT_EQ(value, "40\n");
    EXPECT_TRUE(chunk->subPermutationParameter("LEVEL"));
    EXPECT_FALSE(chunk->getPermutationParameter("LEVEL", value));

    // an int, last: without a line break of its own the defines share a line
    ShaderParameterIntPtr level = ShaderParameterInt::create();
    beginEditCP(level);
    level->setName("LEVEL");
    level->setValue(60);
    endEditCP(level);
    chunk->getPermutationParameters().push_back(level);
    addRefCP(level);
    EXPECT_EQ(parameterDefines(chunk), "#define USE_GREEN 1#define LEVEL 60");
    EXPECT_TRUE(chunk->subPermutationParameter("USE_GREEN"));
    frame();
    EXPECT_EQ(pixel(32, 24), (RGBA{60, 0, 0, 255}));

    chunk->clearPermutationParameters();
    EXPECT_EQ(chunk->getPermutationParameters().size(), 0u);
    EXPECT_EQ(parameterDefines(chunk), "");
}

TEST_F(PermutationFrame, ProgramAndPrefixChangesDropEveryPermutation)
{
    PermutationSHLChunkPtr chunk = probeChunk();
    addPlane(material({chunk}));
    const UInt32 before = countSHLChunks();

    frame();
    setLightCount(1);
    frame();
    ASSERT_EQ(countSHLChunks(), before + 2);

    beginEditCP(chunk, PermutationSHLChunk::VertexProgramPrefixFieldMask);
    chunk->setVertexProgramPrefix("#version 120\n");
    endEditCP(chunk, PermutationSHLChunk::VertexProgramPrefixFieldMask);
    EXPECT_EQ(countSHLChunks(), before);

    frame();
    EXPECT_EQ(countSHLChunks(), before + 1);
    EXPECT_EQ(pixel(32, 24), probe(1, 1, -1, 0));

    beginEditCP(chunk, ShaderChunk::FragmentProgramFieldMask);
    chunk->setFragmentProgram("void main() { gl_FragColor = vec4(0.0, 0.0, 1.0, 1.0); }\n");
    endEditCP(chunk, ShaderChunk::FragmentProgramFieldMask);
    EXPECT_EQ(countSHLChunks(), before);
    frame();
    EXPECT_EQ(pixel(32, 24), Blue);
}

TEST_F(PermutationFrame, UniformsReachEveryPermutation)
{
    const char *fragment = R"(
uniform vec3 tint;
void main() { gl_FragColor = vec4(tint, 1.0); }
)";
    PermutationSHLChunkPtr chunk = makeChunk(ProbeVertex, fragment);
    beginEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    chunk->setUniformParameter("tint", Vec3f(1.f, 0.f, 0.f));
    endEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    addPlane(material({chunk}));

    frame();
    EXPECT_EQ(pixel(32, 24).r, 255);
    const UInt32 before = countSHLChunks();

    // a new value: no new permutation, the active one gets it
    beginEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    chunk->setUniformParameter("tint", Vec3f(0.f, 1.f, 0.f));
    endEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    frame();
    EXPECT_EQ(countSHLChunks(), before);
    EXPECT_EQ(pixel(32, 24).g, 255);

    // a new permutation gets the current value, and so does the old one
    // when it comes back
    setLightCount(1);
    frame();
    EXPECT_EQ(pixel(32, 24).g, 255);
    beginEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    chunk->setUniformParameter("tint", Vec3f(0.f, 0.f, 1.f));
    endEditCP(chunk, ShaderParameterChunk::ParametersFieldMask);
    frame();
    EXPECT_EQ(pixel(32, 24).b, 255);
    setLightCount(0);
    frame();
    EXPECT_EQ(pixel(32, 24).b, 255);
    EXPECT_EQ(countSHLChunks(), before + 1);

    // an unchanged state twice in a row copies nothing
    Thread::getCurrentChangeList()->clearAll();
    frame();
    EXPECT_EQ(parameterCopies(), 0u);
    setLightCount(1);
    frame();
    EXPECT_EQ(parameterCopies(), 1u) << "a switch of permutation copies once";
}

TEST_F(PermutationFrame, CacheHoldsAtMost128Permutations)
{
    // no program texts: nothing is compiled, the cache works all the same
    PermutationSHLChunkPtr chunk = PermutationSHLChunk::create();
    keep(chunk);
    action->setWindow(win.getCPtr());

    const UInt32 before = countSHLChunks();
    for(int i = 0; i < 129; ++i)
    {
        chunk->setPermutationParameter("N", std::to_string(i));
        chunk->activate(action.get(), 0);
        chunk->deactivate(action.get(), 0);
    }
    EXPECT_EQ(countSHLChunks(), before + 129) << "the 129th is still stored";

    chunk->setPermutationParameter("N", "129");
    chunk->activate(action.get(), 0);
    chunk->deactivate(action.get(), 0);
    EXPECT_EQ(countSHLChunks(), before + 1) << "the cache is emptied first";

    chunk->clearPermutationCache();
    EXPECT_EQ(countSHLChunks(), before);
    chunk->deactivate(action.get(), 0);
}

// --- the permutation's programs --------------------------------------------------------------

TEST_F(PermutationFrame, PermutationTextsAndFields)
{
    PermutationSHLChunkPtr chunk = makeChunk(ProbeVertex, "");
    beginEditCP(chunk);
    chunk->setVertexProgramPrefix("#version 120\n");
    chunk->setFragmentProgramPrefix("#version 120\n");
    chunk->setCgFrontEnd(false);
    chunk->setIsTransparent(true);
    endEditCP(chunk);
    ChunkMaterialPtr mat = material({chunk});
    addPlane(mat);

    EXPECT_TRUE(chunk->isTransparent());
    EXPECT_TRUE(mat->isTransparent());

    frame();
    SHLChunkPtr permutation = newestSHLChunk();
    ASSERT_NE(permutation, NullFC);
    EXPECT_EQ(permutation->getVertexProgram(),
              std::string("#version 120\n\n") + PlainBlock + "\n" + ProbeVertex);
    EXPECT_EQ(permutation->getFragmentProgram(), "") << "an empty text stays empty";
    EXPECT_EQ(chunk->findPermutation(PlainBlock), permutation);
    EXPECT_EQ(chunk->findPermutation("no such key"), NullFC);
}

TEST_F(PermutationFrame, CopyHoldsItsOwnParameters)
{
    PermutationSHLChunkPtr chunk = PermutationSHLChunk::create();
    chunk->setPermutationParameter("A", "1\n");
    chunk->setPermutationParameter("B", "2\n");

    PermutationSHLChunkPtr copy = PermutationSHLChunkPtr::dcast(chunk->shallowCopy());
    addRefCP(copy);
    subRefCP(chunk);

    std::string value;
    EXPECT_TRUE(copy->getPermutationParameter("B", value));
    EXPECT_EQ(value, "2\n");
    EXPECT_TRUE(copy->setPermutationParameter("C", "3\n"));
    EXPECT_EQ(parameterDefines(copy), "#define A 1\n#define B 2\n#define C 3\n");
    subRefCP(copy);
}

// --- bad input --------------------------------------------------------------------------------

TEST_F(PermutationFrame, CompileErrorOfOnePermutationIsLoggedOnce)
{
    std::string fragment = std::string("#if OSG_ACTIVE_LIGHTS_COUNT == 1\nthis is no GLSL;\n#endif\n") +
                           ProbeFragment;
    addPlane(material({makeChunk(ProbeVertex, fragment.c_str())}));

    setLightCount(1);
    std::string log = frameLog();
    EXPECT_NE(log.find("Couldn't compile fragment program!"), std::string::npos) << log;
    EXPECT_EQ(frameLog(), "") << "the failed permutation is not compiled again";

    setLightCount(2);
    frame();
    EXPECT_EQ(pixel(32, 24), probe(2, 3, -1, 0));

    setLightCount(1);
    EXPECT_EQ(frameLog(), "");
    setLightCount(0);
    frame();
    EXPECT_EQ(pixel(32, 24), probe(0, 0, -1, 0));
}

TEST_F(PermutationFrame, OddParametersAreReportedAndSkipped)
{
    PermutationSHLChunkPtr chunk = probeChunk();
    addPlane(material({chunk}));

    ShaderParameterRealPtr real = ShaderParameterReal::create();
    beginEditCP(real);
    real->setName("SCALE");
    real->setValue(2.f);
    endEditCP(real);
    addRefCP(real);
    chunk->getPermutationParameters().push_back(real);
    chunk->getPermutationParameters().push_back(ShaderParameterPtr());

    std::string log = frameLog();
    EXPECT_NE(log.find("PermutationParameter SCALE has unknown type!"), std::string::npos) << log;
    EXPECT_NE(log.find("is NullFC"), std::string::npos) << log;
    EXPECT_EQ(pixel(32, 24), probe(0, 0, -1, 0)) << "the permutation is made all the same";

    {
        LogCapture capture(LOG_WARNING);
        EXPECT_EQ(parameterDefines(chunk), "#define SCALE <UnknownType>");
    }

    // the name-based access lives with the NullFC entry
    std::string value;
    EXPECT_TRUE(chunk->setPermutationParameter("LATE", "1\n"));
    EXPECT_TRUE(chunk->getPermutationParameter("LATE", value));
    chunk->clearPermutationParameters();
}

TEST_F(PermutationFrame, EmptyProgramsDrawWithoutShader)
{
    PermutationSHLChunkPtr chunk = PermutationSHLChunk::create();
    keep(chunk);
    addPlane(material({chunk}));
    frame();
    frame();
}

TEST_F(PermutationFrame, ChangeFromAnotherClassOnlyWarns)
{
    PermutationSHLChunkPtr chunk = probeChunk();
    SHLChunkPtr            plain = SHLChunk::create();
    keep(plain);
    action->setWindow(win.getCPtr());
    const UInt32 before = countSHLChunks();

    LogCapture log(LOG_WARNING);
    chunk->changeFrom(action.get(), plain.getCPtr(), 0);
    chunk->changeFrom(action.get(), NULL, 0);
    std::string text = log.take();
    const char *warning = "PermutationSHLChunk::changeFrom: caught non-PermutationSHLChunk!\n";
    size_t      first   = text.find(warning);
    ASSERT_NE(first, std::string::npos) << text;
    EXPECT_NE(text.find(warning, first + 1), std::string::npos) << "once for each call";

    GLint program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0) << "nothing was activated";
    EXPECT_EQ(countSHLChunks(), before);

    // between two permutation chunks: the old one goes, the new one comes
    chunk->activate(action.get(), 0);
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_NE(program, 0);
    PermutationSHLChunkPtr other = makeChunk(ProbeVertex, ProbeFragment);
    other->changeFrom(action.get(), chunk.getCPtr(), 0);
    GLint otherProgram = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &otherProgram);
    EXPECT_NE(otherProgram, 0);
    EXPECT_NE(otherProgram, program);
    other->deactivate(action.get(), 0);
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0);
}

} // namespace
