// SHLChunk on a real window: compile, link, uniforms of every parameter
// type read back from GL, errors through the log, computed OSG uniforms.
#include "StateGLSupport.h"

#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGLog.h>

#include <sstream>

using namespace osg;
using namespace statetest;

namespace
{
const char *passThroughVertex = "void main()\n"
                                "{\n"
                                "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                                "    gl_FrontColor = gl_Color;\n"
                                "    gl_Position = ftransform();\n"
                                "}\n";

// every uniform takes part in the result, so none is optimised away
const char *allTypesFragment = "uniform bool  b;\n"
                               "uniform int   i;\n"
                               "uniform float r;\n"
                               "uniform vec2  v2;\n"
                               "uniform vec3  v3;\n"
                               "uniform vec4  v4;\n"
                               "uniform mat4  m;\n"
                               "uniform int   mi[3];\n"
                               "uniform float mr[3];\n"
                               "uniform vec2  mv2[2];\n"
                               "uniform vec3  mv3[2];\n"
                               "uniform vec4  mv4[2];\n"
                               "uniform mat4  mm[2];\n"
                               "void main()\n"
                               "{\n"
                               "    float s = (b ? 1.0 : 0.0) + float(i) + r + v2.x + v3.x + v4.x\n"
                               "            + m[0][0] + float(mi[0] + mi[1] + mi[2])\n"
                               "            + mr[0] + mr[1] + mr[2] + mv2[0].x + mv2[1].y\n"
                               "            + mv3[0].z + mv3[1].x + mv4[0].w + mv4[1].y\n"
                               "            + mm[0][3][0] + mm[1][1][1];\n"
                               "    gl_FragColor = vec4(fract(s), 0.0, 0.0, 1.0);\n"
                               "}\n";

const char *greenFragment = "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }\n";

SHLChunkPtr makeShader(const char *vertex, const char *fragment)
{
    SHLChunkPtr shl = SHLChunk::create();
    addRefCP(shl);
    beginEditCP(shl);
    if(vertex != NULL)
        shl->setVertexProgram(vertex);
    if(fragment != NULL)
        shl->setFragmentProgram(fragment);
    endEditCP(shl);
    return shl;
}

class SHLChunkGL : public GLTest
{
  protected:
    GLuint program(const SHLChunkPtr &shl) { return win->getGLObjectId(shl->getGLId()); }

    GLint location(GLuint prog, const char *name)
    {
        typedef GLint(OSG_APIENTRY * F)(GLuint, const char *);
        F f = reinterpret_cast<F>(win->getFunction(SHLChunk::getFuncGetUniformLocation()));
        return f(prog, name);
    }

    std::vector<float> floats(GLuint prog, const char *name, UInt32 count)
    {
        typedef void(OSG_APIENTRY * F)(GLuint, GLint, GLfloat *);
        F                  f = reinterpret_cast<F>(win->getFunction(SHLChunk::getFuncGetUniformfv()));
        std::vector<float> v(count, -999.f);
        GLint              loc = location(prog, name);
        EXPECT_GE(loc, 0) << name;
        if(loc >= 0)
            f(prog, loc, v.data());
        return v;
    }

    std::vector<GLint> ints(GLuint prog, const char *name, UInt32 count)
    {
        typedef void(OSG_APIENTRY * F)(GLuint, GLint, GLint *);
        F                  f = reinterpret_cast<F>(win->getFunction(SHLChunk::getFuncGetUniformiv()));
        std::vector<GLint> v(count, -999);
        GLint              loc = location(prog, name);
        EXPECT_GE(loc, 0) << name;
        if(loc >= 0)
            f(prog, loc, v.data());
        return v;
    }

    GLint currentProgram(void)
    {
        GLint p = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &p);
        return p;
    }
};

Matrix numbered(Real32 base)
{
    Matrix m;
    for(UInt32 c = 0; c < 4; ++c)
        for(UInt32 r = 0; r < 4; ++r)
            m[c][r] = base + Real32(4 * c + r);
    return m;
}
} // namespace

TEST_F(SHLChunkGL, UniformsOfEveryParameterTypeReachGL)
{
    SHLChunkPtr shl = makeShader(passThroughVertex, allTypesFragment);

    MFInt32  mi;
    MFReal32 mr;
    MFVec2f  mv2;
    MFVec3f  mv3;
    MFVec4f  mv4;
    MFMatrix mm;
    for(Int32 k = 0; k < 3; ++k)
    {
        mi.push_back(10 + k);
        mr.push_back(0.25f * k);
    }
    for(Int32 k = 0; k < 2; ++k)
    {
        mv2.push_back(Vec2f(1 + k, 2 + k));
        mv3.push_back(Vec3f(3 + k, 4 + k, 5 + k));
        mv4.push_back(Vec4f(6 + k, 7 + k, 8 + k, 9 + k));
        mm.push_back(numbered(100.f * (k + 1)));
    }

    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    EXPECT_TRUE(shl->setUniformParameter("b", true));
    EXPECT_TRUE(shl->setUniformParameter("i", Int32(-7)));
    EXPECT_TRUE(shl->setUniformParameter("r", Real32(0.5f)));
    EXPECT_TRUE(shl->setUniformParameter("v2", Vec2f(1.5f, 2.5f)));
    EXPECT_TRUE(shl->setUniformParameter("v3", Vec3f(1, 2, 3)));
    EXPECT_TRUE(shl->setUniformParameter("v4", Vec4f(4, 5, 6, 7)));
    EXPECT_TRUE(shl->setUniformParameter("m", numbered(0)));
    EXPECT_TRUE(shl->setUniformParameter("mi", mi));
    EXPECT_TRUE(shl->setUniformParameter("mr", mr));
    EXPECT_TRUE(shl->setUniformParameter("mv2", mv2));
    EXPECT_TRUE(shl->setUniformParameter("mv3", mv3));
    EXPECT_TRUE(shl->setUniformParameter("mv4", mv4));
    EXPECT_TRUE(shl->setUniformParameter("mm", mm));
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);

    shl->activate(action);
    GLuint prog = program(shl);
    ASSERT_NE(prog, 0u);
    EXPECT_EQ(GLuint(currentProgram()), prog);
    drawQuad();
    shl->deactivate(action);
    EXPECT_EQ(currentProgram(), 0);

    EXPECT_EQ(ints(prog, "b", 1)[0], 1);
    EXPECT_EQ(ints(prog, "i", 1)[0], -7);
    EXPECT_EQ(floats(prog, "r", 1)[0], 0.5f);
    EXPECT_EQ(floats(prog, "v2", 2), (std::vector<float>{1.5f, 2.5f}));
    EXPECT_EQ(floats(prog, "v3", 3), (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(floats(prog, "v4", 4), (std::vector<float>{4, 5, 6, 7}));

    // matrices go up column by column, as they are stored
    std::vector<float> m = floats(prog, "m", 16);
    for(UInt32 k = 0; k < 16; ++k)
        EXPECT_EQ(m[k], numbered(0).getValues()[k]);

    // integer arrays are never sent: they keep GL's initial zeros
    EXPECT_EQ(ints(prog, "mi[0]", 1)[0], 0);
    EXPECT_EQ(ints(prog, "mi[2]", 1)[0], 0);

    for(Int32 k = 0; k < 3; ++k)
        EXPECT_EQ(floats(prog, ("mr[" + std::to_string(k) + "]").c_str(), 1)[0], 0.25f * k);
    EXPECT_EQ(floats(prog, "mv2[1]", 2), (std::vector<float>{2, 3}));
    EXPECT_EQ(floats(prog, "mv3[1]", 3), (std::vector<float>{4, 5, 6}));
    EXPECT_EQ(floats(prog, "mv4[1]", 4), (std::vector<float>{7, 8, 9, 10}));
    std::vector<float> mm1 = floats(prog, "mm[1]", 16);
    for(UInt32 k = 0; k < 16; ++k)
        EXPECT_EQ(mm1[k], numbered(200).getValues()[k]);

    subRefCP(shl);
}

TEST_F(SHLChunkGL, NewValuesAreSentAfterAnEditOfTheParameters)
{
    SHLChunkPtr shl = makeShader(passThroughVertex, "uniform float r;\n"
                                                    "void main() { gl_FragColor = vec4(r); }\n");
    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    shl->setUniformParameter("r", Real32(0.5f));
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);

    shl->activate(action);
    shl->deactivate(action);
    GLuint prog = program(shl);
    EXPECT_EQ(floats(prog, "r", 1)[0], 0.5f);

    // without the edit the value stays where it is
    shl->setUniformParameter("r", Real32(0.25f));
    shl->activate(action);
    shl->deactivate(action);
    EXPECT_EQ(floats(prog, "r", 1)[0], 0.5f);

    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    shl->activate(action);
    shl->deactivate(action);
    EXPECT_EQ(floats(prog, "r", 1)[0], 0.25f);
    EXPECT_EQ(program(shl), prog);   // a refresh keeps the program

    // a new text relinks: a new program object with the values sent again
    beginEditCP(shl, SHLChunk::FragmentProgramFieldMask);
    shl->setFragmentProgram("uniform float r;\n"
                            "void main() { gl_FragColor = vec4(r, r, r, 1.0); }\n");
    endEditCP(shl, SHLChunk::FragmentProgramFieldMask);
    shl->activate(action);
    shl->deactivate(action);
    GLuint relinked = program(shl);
    ASSERT_NE(relinked, 0u);
    EXPECT_EQ(floats(relinked, "r", 1)[0], 0.25f);

    subRefCP(shl);
}

TEST_F(SHLChunkGL, UnknownParametersAreReportedUnlessSwitchedOff)
{
    SHLChunkPtr shl = makeShader(NULL, greenFragment);
    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    shl->setUniformParameter("notThere", Int32(1));
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);

    {
        LogCapture cap;
        shl->activate(action);
        shl->deactivate(action);
        EXPECT_NE(cap.str().find("Unknown parameter 'notThere'!"), std::string::npos)
            << cap.str();
    }

    beginEditCP(shl, SHLChunk::UnknownParameterWarningFieldMask |
                         ShaderParameterChunk::ParametersFieldMask);
    shl->setUnknownParameterWarning(false);
    endEditCP(shl, SHLChunk::UnknownParameterWarningFieldMask |
                       ShaderParameterChunk::ParametersFieldMask);
    {
        LogCapture cap;
        shl->activate(action);
        shl->deactivate(action);
        EXPECT_EQ(cap.str().find("Unknown parameter"), std::string::npos) << cap.str();
    }

    subRefCP(shl);
}

TEST_F(SHLChunkGL, ACompileErrorIsLoggedWithTheDriversOutputAndTheShaderDrawsNothing)
{
    SHLChunkPtr shl = makeShader(NULL, "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0 }\n");

    std::string log;
    {
        LogCapture cap;
        shl->activate(action);
        glColor3f(1, 0, 0);
        drawQuad();
        shl->deactivate(action);
        log = cap.str();
    }

    size_t at = log.find("Couldn't compile fragment program!\n");
    ASSERT_NE(at, std::string::npos) << log;
    // the driver's own message follows on the next line
    std::string rest = log.substr(at + 35);
    EXPECT_NE(rest.find_first_not_of(" \n"), std::string::npos) << log;

    EXPECT_EQ(program(shl), 0u);
    EXPECT_EQ(currentProgram(), 0);
    // what shows is the fixed-function colour, not the shader's green
    EXPECT_EQ(pixel(32, 32), (RGBA{255, 0, 0, 255}));

    subRefCP(shl);
}

TEST_F(SHLChunkGL, ALinkErrorIsLoggedAndLeavesNoProgram)
{
    // the fragment stage reads a varying the vertex stage never writes
    SHLChunkPtr shl = makeShader("void main() { gl_Position = ftransform(); }\n",
                                 "varying vec3 missing;\n"
                                 "void undefinedFunction(void);\n"
                                 "void main() { undefinedFunction(); "
                                 "gl_FragColor = vec4(missing, 1.0); }\n");
    std::string log;
    {
        LogCapture cap;
        shl->activate(action);
        shl->deactivate(action);
        log = cap.str();
    }
    EXPECT_NE(log.find("Couldn't link vertex and fragment program!\n"), std::string::npos)
        << log;
    EXPECT_EQ(program(shl), 0u);

    subRefCP(shl);
}

TEST_F(SHLChunkGL, ProgramsSwitchInChangeFromAndStrangersAreRefused)
{
    SHLChunkPtr a = makeShader(NULL, greenFragment);
    SHLChunkPtr b = makeShader(NULL, "void main() { gl_FragColor = vec4(0.0, 0.0, 1.0, 1.0); }\n");

    a->activate(action);
    GLuint pa = program(a);
    b->changeFrom(action, a.getCPtr());
    GLuint pb = program(b);
    EXPECT_NE(pb, 0u);
    EXPECT_NE(pa, pb);
    EXPECT_EQ(GLuint(currentProgram()), pb);
    drawQuad();
    EXPECT_EQ(pixel(10, 10), (RGBA{0, 0, 255, 255}));

    DepthChunkPtr depth = DepthChunk::create();
    addRefCP(depth);
    {
        LogCapture cap;
        a->changeFrom(action, depth.getCPtr());
        EXPECT_NE(cap.str().find("SHLChunk::changeFrom: caught non-SHLChunk!"), std::string::npos);
    }
    EXPECT_EQ(GLuint(currentProgram()), pb);   // nothing switched
    b->deactivate(action);
    EXPECT_EQ(currentProgram(), 0);

    subRefCP(depth);
    subRefCP(a);
    subRefCP(b);
}

TEST_F(SHLChunkGL, ComputedUniformsFollowTheAction)
{
    SHLChunkPtr shl = makeShader(NULL, "uniform int OSGClusterId;\n"
                                       "uniform int OSGStereoLeftEye;\n"
                                       "uniform int OSGActiveLightsMask;\n"
                                       "uniform mat4 OSGViewMatrix;\n"
                                       "void main() { gl_FragColor = vec4(float(OSGClusterId\n"
                                       "    + OSGStereoLeftEye + OSGActiveLightsMask)\n"
                                       "    + OSGViewMatrix[0][0]); }\n");
    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    shl->setUniformParameter("OSGClusterId", Int32(0));
    shl->setUniformParameter("OSGStereoLeftEye", Int32(0));
    shl->setUniformParameter("OSGActiveLightsMask", Int32(0));
    shl->setUniformParameter("OSGViewMatrix", Matrix());
    shl->setUniformParameter("OSGNoSuchThing", Int32(0));
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);

    std::string log;
    SHLChunk::setClusterId(5);
    {
        LogCapture cap;
        shl->activate(action);
        shl->update(action);
        shl->deactivate(action);
        log = cap.str();
    }
    SHLChunk::setClusterId(-1);

    GLuint prog = program(shl);
    ASSERT_NE(prog, 0u);
    EXPECT_EQ(ints(prog, "OSGClusterId", 1)[0], 5);
    EXPECT_EQ(ints(prog, "OSGStereoLeftEye", 1)[0], -1);   // no stereo camera
    EXPECT_EQ(ints(prog, "OSGActiveLightsMask", 1)[0], 0); // not a render action
    EXPECT_NE(log.find("SHLChunk::checkOSGParameters : unknown osg parameter 'OSGNoSuchThing'"),
              std::string::npos)
        << log;
    // the camera entries need a camera and a viewport on the action
    EXPECT_NE(log.find("Can't update ViewMatrixparameter, camera or viewport is NULL!"),
              std::string::npos)
        << log;
    // computed uniforms are not sent from their stored values
    EXPECT_EQ(log.find("Unknown parameter"), std::string::npos) << log;

    subRefCP(shl);
}

TEST_F(SHLChunkGL, ProgramObjectGoesWithTheChunk)
{
    SHLChunkPtr shl = makeShader(NULL, greenFragment);
    shl->activate(action);
    shl->deactivate(action);
    GLuint prog = program(shl);
    ASSERT_NE(prog, 0u);

    typedef GLboolean(OSG_APIENTRY * IsProgram)(GLuint);
    IsProgram isProgram = reinterpret_cast<IsProgram>(win->getFunctionByName("glIsProgram"));
    ASSERT_NE(isProgram, nullptr);
    EXPECT_TRUE(isProgram(prog));

    subRefCP(shl);
    win->frameExit();
    EXPECT_FALSE(isProgram(prog));
}

namespace
{
int callbackCalls = 0;

void countingCallback(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    ++callbackCalls;
    typedef void(OSG_APIENTRY * Uniform1i)(GLint, GLint);
    Window   *win = action->getWindow();
    Uniform1i f   = reinterpret_cast<Uniform1i>(win->getFunction(SHLChunk::getFuncUniform1i()));
    typedef GLint(OSG_APIENTRY * Location)(GLuint, const char *);
    Location loc = reinterpret_cast<Location>(win->getFunction(SHLChunk::getFuncGetUniformLocation()));
    f(loc(program, p->getName().c_str()), 40 + callbackCalls);
}
} // namespace

TEST_F(SHLChunkGL, ParameterCallbacksRunAtActivationAndUpdate)
{
    SHLChunkPtr shl = makeShader(NULL, "uniform int counter;\n"
                                       "void main() { gl_FragColor = vec4(float(counter)); }\n");
    beginEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    shl->addParameterCallback("counter", &countingCallback);
    endEditCP(shl, ShaderParameterChunk::ParametersFieldMask);
    EXPECT_TRUE(shl->hasUniformParameter("counter"));

    callbackCalls = 0;
    shl->activate(action);
    shl->update(action);
    EXPECT_EQ(callbackCalls, 2);
    shl->deactivate(action);
    EXPECT_EQ(ints(program(shl), "counter", 1)[0], 42);

    subRefCP(shl);
}

TEST(SHLChunkTest, ProgramParametersAndSourcesAreKeptAsGiven)
{
    SHLChunkPtr shl = SHLChunk::create();
    addRefCP(shl);

    shl->addProgramParameter(GL_GEOMETRY_INPUT_TYPE_EXT, GL_TRIANGLES);
    shl->addProgramParameter(GL_GEOMETRY_VERTICES_OUT_EXT, 3);
    shl->setProgramParameter(GL_GEOMETRY_INPUT_TYPE_EXT, GL_LINES);   // moves to the end
    std::vector<std::pair<GLenum, UInt32> > params = shl->getProgramParameters();
    ASSERT_EQ(params.size(), 2u);
    EXPECT_EQ(params[0].first, GLenum(GL_GEOMETRY_VERTICES_OUT_EXT));
    EXPECT_EQ(params[1].second, UInt32(GL_LINES));
    EXPECT_EQ(shl->getProgramParameter(GL_GEOMETRY_VERTICES_OUT_EXT), 3u);
    {
        LogCapture cap;
        EXPECT_EQ(shl->getProgramParameter(GL_GEOMETRY_OUTPUT_TYPE_EXT), 0u);
        EXPECT_NE(cap.str().find("SHLChunk::getProgramParameter : Couldn't find program parameter"),
                  std::string::npos);
    }
    shl->clearProgramParameters();
    EXPECT_TRUE(shl->getProgramParameters().empty());

    std::istringstream src("void main() {}\n");
    EXPECT_TRUE(shl->readVertexProgram(src));
    EXPECT_EQ(shl->getVertexProgram(), "void main() {}\n");
    {
        LogCapture cap;
        EXPECT_FALSE(shl->readFragmentProgram("/nonexistent/shader.frag"));
        EXPECT_NE(cap.str().find("ShaderChunk::readFragmentProgram: couldn't open "
                                 "'/nonexistent/shader.frag' for reading!"),
                  std::string::npos)
            << cap.str();
    }

    // equal texts and the same number of parameters make equal chunks
    SHLChunkPtr other = SHLChunk::create();
    addRefCP(other);
    other->setVertexProgram("void main() {}\n");
    EXPECT_TRUE(*shl == *other);
    other->setUniformParameter("x", Int32(1));
    EXPECT_FALSE(*shl == *other);

    subRefCP(shl);
    subRefCP(other);
}
