// The classification texts of the transfer functions, compiled and linked
// behind the ray caster's own preamble and run for one sample: the colour read
// back from the framebuffer must be the table's entry for the value.
#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/VolumeNodeHandler.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGReal16.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace osg;

namespace
{


/// One sample: classify (current, previous), optionally correct and
/// composite it over nothing.
const char *const FrameMain = R"GLSL(
uniform float currentValue;
uniform float previousValue;
uniform float sampleStep;
uniform int corrected;

void main()
{
    SamplePoint current;
    SamplePoint previous;
    initSamplePoint(current, sampleStep);
    initSamplePoint(previous, sampleStep);
    current.value = vec4(currentValue);
    previous.value = vec4(previousValue);
    Ray ray;
    ray.origin = vec3(0.0);
    ray.direction = vec3(0.0, 0.0, 1.0);
    ray.tnear = 0.0;
    ray.tfar = 1.0;
    ray.length = 1.0;
    ray.active = true;
    vec4 outColor = vec4(0.0);
    getClassification(ray, current, previous, outColor);
    if(corrected != 0)
    {
        applyCorrectionFactor(ray, current, previous, outColor);
        compositeColor(ray, current, previous, outColor);
        gl_FragColor = outColor;
    }
    else
    {
        gl_FragColor = current.color;
    }
}
)GLSL";

const char *const VertexShader = R"GLSL(#version 110
void main()
{
    gl_Position = gl_Vertex;
}
)GLSL";

struct Rgba
{
    int c[4];
};

float halfOf(const unsigned short *halves, size_t index)
{
    Real16 h;
    h.setBits(halves[index]);
    return float(h);
}

int toByte(double v)
{
    return int(std::floor(std::min(1.0, std::max(0.0, v)) * 255.0 + 0.5));
}

class ClassificationShader : public testing::Test
{
  protected:
    void SetUp(void) override
    {
        if(!HeadlessGLContext::isAvailable())
            GTEST_SKIP() << "no EGL context";
        ASSERT_TRUE(_context.init(1, 1));
    }

    void TearDown(void) override
    {
        for(GLuint t : _textures)
            glDeleteTextures(1, &t);
        if(_program != 0)
            glDeleteProgram(_program);
    }

    GLuint compile(GLenum type, const std::string &text)
    {
        GLuint      shader = glCreateShader(type);
        const char *source = text.c_str();
        glShaderSource(shader, 1, &source, NULL);
        glCompileShader(shader);
        GLint ok = 0;
        glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
        if(!ok)
        {
            char log[4096] = "";
            glGetShaderInfoLog(shader, sizeof(log), NULL, log);
            ADD_FAILURE() << "compile failed:\n" << log << "\n" << text;
        }
        return shader;
    }

    /// Links the frame around a classification text.
    bool build(const std::string &strategy)
    {
        GLuint vs = compile(GL_VERTEX_SHADER, VertexShader);
        GLuint fs = compile(GL_FRAGMENT_SHADER, VolumeNodeHandler().getPreambleShaderString() + strategy + FrameMain);
        _program  = glCreateProgram();
        glAttachShader(_program, vs);
        glAttachShader(_program, fs);
        glLinkProgram(_program);
        glDeleteShader(vs);
        glDeleteShader(fs);
        GLint ok = 0;
        glGetProgramiv(_program, GL_LINK_STATUS, &ok);
        if(!ok)
        {
            char log[4096] = "";
            glGetProgramInfoLog(_program, sizeof(log), NULL, log);
            ADD_FAILURE() << "link failed:\n" << log;
        }
        return ok != 0;
    }

    void texture(GLenum target, GLint unit, const char *sampler, GLint internalFormat,
                 GLsizei w, GLsizei h, GLenum type, const void *data)
    {
        GLuint t = 0;
        glGenTextures(1, &t);
        _textures.push_back(t);
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(target, t);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        if(target == GL_TEXTURE_1D)
            glTexImage1D(target, 0, internalFormat, w, 0, GL_RGBA, type, data);
        else
            glTexImage2D(target, 0, internalFormat, w, h, 0, GL_RGBA, type, data);
        // nearest texels make the expected values exact
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glUseProgram(_program);
        glUniform1i(glGetUniformLocation(_program, sampler), unit);
        glUseProgram(0);
    }

    Rgba classify(float current, float previous, bool corrected, float step = 0.005f)
    {
        glUseProgram(_program);
        glUniform1f(glGetUniformLocation(_program, "currentValue"), current);
        glUniform1f(glGetUniformLocation(_program, "previousValue"), previous);
        glUniform1f(glGetUniformLocation(_program, "sampleStep"), step);
        glUniform1f(glGetUniformLocation(_program, "correctionFactor"), 200.f);
        glUniform1i(glGetUniformLocation(_program, "corrected"), corrected ? 1 : 0);
        glViewport(0, 0, 1, 1);
        glClearColor(0.f, 0.f, 0.f, 0.f);
        glClear(GL_COLOR_BUFFER_BIT);
        glBegin(GL_QUADS);
        glVertex2f(-1.f, -1.f);
        glVertex2f(1.f, -1.f);
        glVertex2f(1.f, 1.f);
        glVertex2f(-1.f, 1.f);
        glEnd();
        glUseProgram(0);
        // read straight from the context's current framebuffer, whichever
        // backing it got
        UInt8 pixel[4] = {0, 0, 0, 0};
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return Rgba{{pixel[0], pixel[1], pixel[2], pixel[3]}};
    }

    HeadlessGLContext   _context;
    GLuint              _program = 0;
    std::vector<GLuint> _textures;
};

void expectNear(const Rgba &got, const double expected[4], int tolerance, const char *what)
{
    for(int c = 0; c < 4; ++c)
        EXPECT_NEAR(got.c[c], toByte(expected[c]), tolerance) << what << " channel " << c;
}

/// A table with distinct colours: red rises, blue falls, opacity rises.
void bakeDistinct(Transferfunction &tf, Int32 mode)
{
    tf.setMode(mode);
    tf.createLinearTransfer(mode);
    ImagePtr                      image = tf.getTFTextureChunk()->getImage();
    Transferfunction::ColorPoints colours;
    colours.push_back(std::make_pair(0.f, FloatColor(0.f, 0.5f, 1.f)));
    colours.push_back(std::make_pair(1.f, FloatColor(1.f, 0.5f, 0.f)));
    tf.setColorValues(image, colours);
}

} // namespace

TEST_F(ClassificationShader, SimpleOneDimensionalLookupReturnsTheTexel)
{
    SimpleTransferfunction tf;
    bakeDistinct(tf, 0);
    ASSERT_TRUE(build(tf.getFragmentShaderString()));
    const UInt8 *table = tf.getTFTextureChunk()->getImage()->getData();
    texture(GL_TEXTURE_1D, 0, "transferFunction", GL_RGBA8, 256, 1, GL_UNSIGNED_BYTE, table);

    for(int v : {0, 1, 77, 128, 200, 254, 255})
    {
        Rgba got = classify(v / 255.f, 0.f, false);
        for(int c = 0; c < 4; ++c)
            EXPECT_EQ(got.c[c], table[v * 4 + c]) << "value " << v << " channel " << c;
    }
}

TEST_F(ClassificationShader, SimpleCorrectionPremultipliesAndScalesOpacityWithTheStep)
{
    SimpleTransferfunction tf;
    bakeDistinct(tf, 0);
    ASSERT_TRUE(build(tf.getFragmentShaderString()));
    const UInt8 *table = tf.getTFTextureChunk()->getImage()->getData();
    texture(GL_TEXTURE_1D, 0, "transferFunction", GL_RGBA8, 256, 1, GL_UNSIGNED_BYTE, table);

    for(float step : {0.005f, 0.01f, 0.0025f})
    {
        for(int v : {30, 128, 250})
        {
            const double a     = table[v * 4 + 3] / 255.0;
            const double alpha = 1.0 - std::pow(1.0 - a, step * 200.0);
            double       expected[4];
            for(int c = 0; c < 3; ++c)
                expected[c] = table[v * 4 + c] / 255.0 * alpha;
            expected[3] = alpha;
            expectNear(classify(v / 255.f, 0.f, true, step), expected, 1, "corrected");
        }
    }
}

TEST_F(ClassificationShader, SimpleTwoDimensionalLookupSplitsHighAndLowByte)
{
    SimpleTransferfunction tf;
    tf.setMode(1);
    ASSERT_TRUE(build(tf.getFragmentShaderString()));

    // texel (row, column) holds (row, column, 0.25, 1) / 255
    std::vector<unsigned short> table(65536 * 4);
    for(int row = 0; row < 256; ++row)
        for(int column = 0; column < 256; ++column)
        {
            unsigned short *t = &table[(row * 256 + column) * 4];
            t[0]              = Real16(row / 255.f).bits();
            t[1]              = Real16(column / 255.f).bits();
            t[2]              = Real16(0.25f).bits();
            t[3]              = Real16(1.f).bits();
        }
    texture(GL_TEXTURE_2D, 0, "transferFunction", GL_RGBA16F, 256, 256, GL_HALF_FLOAT,
            table.data());

    for(int v : {0x1234, 0x8080, 0xABCD, 0x0101, 0xFE02})
    {
        Rgba got = classify(v / 65535.f, 0.f, false);
        EXPECT_EQ(got.c[0], v >> 8) << std::hex << v;
        EXPECT_EQ(got.c[1], v & 0xFF) << std::hex << v;
        EXPECT_NEAR(got.c[2], 64, 1);
        EXPECT_EQ(got.c[3], 255);
    }
}

TEST_F(ClassificationShader, PreintegratedEightBitLooksUpThePair)
{
    PreintTransferFunction tf;
    bakeDistinct(tf, 0);
    ASSERT_TRUE(tf.calcPreIntTable(tf.getTFTextureChunk()->getImage()));
    ASSERT_TRUE(build(tf.getFragmentShaderString()));
    ImagePtr              image = tf.getPreIntTable()->getImage();
    const unsigned short *table = reinterpret_cast<const unsigned short *>(image->getData());
    texture(GL_TEXTURE_2D, 0, "preIntTable", GL_RGBA16F, 256, 256, GL_HALF_FLOAT, table);

    const int pairs[][2] = {{10, 10}, {0, 255}, {255, 0}, {100, 180}, {200, 30}};
    for(const auto &pair : pairs)
    {
        const int current = pair[0], previous = pair[1];
        double    expected[4];
        for(int c = 0; c < 4; ++c)
            expected[c] = halfOf(table, (previous * 256 + current) * 4 + c);
        expectNear(classify(current / 255.f, previous / 255.f, false), expected, 1, "pair");
    }

    // the colour comes premultiplied: correction rescales it by the ratio
    // of the opacities
    const double a = halfOf(table, (180 * 256 + 100) * 4 + 3);
    const double alpha = 1.0 - std::pow(1.0 - a, 2.0);
    double       expected[4];
    for(int c = 0; c < 3; ++c)
        expected[c] = halfOf(table, (180 * 256 + 100) * 4 + c) * alpha / a;
    expected[3] = alpha;
    expectNear(classify(100 / 255.f, 180 / 255.f, true, 0.01f), expected, 1, "corrected");
}

TEST_F(ClassificationShader, PreintegratedSixteenBitDividesTheIntegralOrFallsBack)
{
    PreintTransferFunction tf;
    bakeDistinct(tf, 1);
    ASSERT_TRUE(tf.calcPreIntTable(tf.getTFTextureChunk()->getImage()));
    ASSERT_TRUE(build(tf.getFragmentShaderString()));
    const Real32 *integral =
        reinterpret_cast<const Real32 *>(tf.getPreIntTable()->getImage()->getData());
    const unsigned short *plain =
        reinterpret_cast<const unsigned short *>(tf.getTFTextureChunk()->getImage()->getData());
    texture(GL_TEXTURE_2D, 0, "preIntTable", GL_RGBA32F, 256, 256, GL_FLOAT, integral);
    texture(GL_TEXTURE_2D, 1, "transferFunction", GL_RGBA16F, 256, 256, GL_HALF_FLOAT, plain);

    // the texel a normalised value selects: high byte row, low byte column
    auto texelOf = [](float value) {
        float scaled = value * 256.f;
        float row    = std::floor(scaled);
        int   column = int(std::floor((scaled - row) * 256.f));
        return int(row) * 256 + column;
    };

    // no extent: the plain table, premultiplied by the shader
    {
        const float value = 0x6543 / 65535.f;
        const int   texel = texelOf(value);
        const double a    = halfOf(plain, texel * 4 + 3);
        double       expected[4];
        for(int c = 0; c < 3; ++c)
            expected[c] = halfOf(plain, texel * 4 + c) * a;
        expected[3] = a;
        expectNear(classify(value, value, false), expected, 1, "fallback");
    }

    // a segment: the difference of two integrals over its length, the same
    // whichever way the ray runs
    const int pairs[][2] = {{0x2000, 0x9000}, {0x9000, 0x2000}, {0x4444, 0x4544}};
    for(const auto &pair : pairs)
    {
        const float current = pair[0] / 65535.f, previous = pair[1] / 65535.f;
        const int   tc = texelOf(current), tp = texelOf(previous);
        const double weight = 1.0 / (65536.0 * (double(current) - double(previous)));
        double       expected[4];
        for(int c = 0; c < 4; ++c)
            expected[c] = weight * (double(integral[tc * 4 + c]) - double(integral[tp * 4 + c]));
        expectNear(classify(current, previous, false), expected, 2, "segment");
    }
}
