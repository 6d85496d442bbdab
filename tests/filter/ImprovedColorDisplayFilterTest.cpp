// The calibrating colour filter in whole frames: a picture of 4 x 4 colour
// blocks goes through gamma, colour matrix and shading table, and the
// read-back pixels are compared with the same maths done on the CPU
// (trilinear lookup from texel centre to texel centre); the table size
// check and its identity ramp; the two debug modes; field edits after the
// build.
#include "filter/FilterTestSupport.h"

#include <OpenSG/OSGImprovedColorDisplayFilter.h>

#include <sstream>

using namespace osg;
using namespace filtertest;

namespace
{

const Int32 W = 64, H = 48;

/// 4 x 4 blocks of 16 x 12 pixels, red growing to the right, green upwards.
RGBA blocks(Int32 x, Int32 y)
{
    const Int32 i = x / 16, j = y / 12;
    return RGBA{UInt8(i * 85), UInt8(j * 85), UInt8((i + j) * 255 / 6), 255};
}

/// A table that depends on position (not mirror symmetric) and, bent, on
/// the value.
struct Table
{
    UInt32               w, h, d;
    std::vector<Vec3f> entries;

    Table(UInt32 w_, UInt32 h_, UInt32 d_) : w(w_), h(h_), d(d_)
    {
        for(UInt32 z = 0; z < d; ++z)
            for(UInt32 y = 0; y < h; ++y)
                for(UInt32 x = 0; x < w; ++x)
                {
                    const Real32 v = Real32(z) / Real32(d - 1);
                    Vec3f        e;
                    for(UInt32 c = 0; c < 3; ++c)
                        e[c] = std::min(1.f, v * v * (0.55f + 0.2f * x) + 0.12f * y + 0.04f * c);
                    entries.push_back(e);
                }
    }

    /// The stored byte, as a value.
    Real32 texel(UInt32 x, UInt32 y, UInt32 z, UInt32 c) const
    {
        return UInt8(entries[(z * h + y) * w + x][c] * 255.f) / 255.f;
    }

    /// Trilinear at texel indices (fx, fy, fz), clamped to the edge texels.
    Real32 linear(Real32 fx, Real32 fy, Real32 fz, UInt32 c) const
    {
        const Real32 f[3] = {fx, fy, fz};
        const UInt32 n[3] = {w, h, d};
        UInt32       lo[3], hi[3];
        Real32       a[3];
        for(UInt32 k = 0; k < 3; ++k)
        {
            const Real32 v = std::min(std::max(f[k], 0.f), Real32(n[k] - 1));
            lo[k]          = UInt32(std::floor(v));
            hi[k]          = std::min(lo[k] + 1, n[k] - 1);
            a[k]           = v - lo[k];
        }
        Real32 sum = 0.f;
        for(UInt32 corner = 0; corner < 8; ++corner)
        {
            const bool   bx = corner & 1, by = corner & 2, bz = corner & 4;
            const Real32 weight =
                (bx ? a[0] : 1 - a[0]) * (by ? a[1] : 1 - a[1]) * (bz ? a[2] : 1 - a[2]);
            sum += weight * texel(bx ? hi[0] : lo[0], by ? hi[1] : lo[1], bz ? hi[2] : lo[2], c);
        }
        return sum;
    }
};

/// Not symmetric, so that a transposed matrix shows: m[j][i] is the weight
/// of input channel i (alpha = 1 last) in output channel j.
Matrix colourMatrix(void)
{
    Matrix       m;
    const Real32 w[4][4] = {{0.6f, 0.3f, 0.1f, 0.0f},
                            {0.0f, 0.7f, 0.1f, 0.1f},
                            {0.2f, 0.0f, 0.5f, 0.2f},
                            {0.0f, 0.0f, 0.0f, 1.0f}};
    for(UInt32 j = 0; j < 4; ++j)
        for(UInt32 i = 0; i < 4; ++i)
            m[j][i] = w[j][i];
    return m;
}

/// The filter's maths for pixel (x, y) of a picture pixel src.
Colour reference(const RGBA &src, Int32 x, Int32 y, Real32 gamma, const Matrix &m,
                 const Table &t)
{
    const Real32 in[4] = {std::pow(src.r / 255.f, gamma), std::pow(src.g / 255.f, gamma),
                          std::pow(src.b / 255.f, gamma), 1.f};
    Real32       out[3];
    for(UInt32 j = 0; j < 3; ++j)
        out[j] = in[0] * m[j][0] + in[1] * m[j][1] + in[2] * m[j][2] + in[3] * m[j][3];

    // texel centre to texel centre: 0..1 covers index 0 .. n - 1
    const Real32 fx = (x + 0.5f) / W * (t.w - 1);
    const Real32 fy = (y + 0.5f) / H * (t.h - 1);

    return Colour{t.linear(fx, fy, out[0] * (t.d - 1), 0),
                  t.linear(fx, fy, out[1] * (t.d - 1), 1),
                  t.linear(fx, fy, out[2] * (t.d - 1), 2)};
}

/// Whether each line of a log is a warning about the uniforms the debug
/// program doesn't use.
bool onlyUnusedUniforms(const std::string &log)
{
    std::istringstream lines(log);
    std::string        line;
    while(std::getline(lines, line))
        if(line.find("Unknown parameter 'grabTexture'!") == std::string::npos &&
           line.find("Unknown parameter 'shadingDepth'!") == std::string::npos)
            return false;
    return true;
}

class ColourFilter : public FilterFrame
{
  protected:
    ColourFilter(void) : FilterFrame(W, H) {}

    void SetUp(void) override
    {
        FilterFrame::SetUp();
        if(win == NullFC)
            return;

        filters = pictureQuad(0, 0, W, H, blocks);

        filter = ImprovedColorDisplayFilter::create();
        keep(filter);
        setFilter(filters, filter);
    }

    void setTable(const Table &t)
    {
        beginEditCP(filter);
        filter->setWidth(t.w);
        filter->setHeight(t.h);
        filter->setDepth(t.d);
        filter->getTable().clear();
        for(size_t i = 0; i < t.entries.size(); ++i)
            filter->getTable().push_back(t.entries[i]);
        endEditCP(filter);
    }

    /// Makes the foreground build its filters again at the next frame.
    void rebuild(void) { setFilter(filters, filter); }

    ChunkMaterialPtr material(void)
    {
        return filters->findReadbackGroup("ImprovedColorDisplayFilter")->getMaterial();
    }

    /// The table's texture: the material's second chunk (unit 1).
    TextureChunkPtr shadingTexture(void)
    {
        return TextureChunkPtr::dcast(material()->getChunks(1));
    }

    Picture grab(const std::string &png = "") { return FilterFrame::grab(0, 0, W, H, png); }

    DisplayFilterForegroundPtr    filters;
    ImprovedColorDisplayFilterPtr filter;
};

} // namespace

TEST_F(ColourFilter, DefaultFieldsWarnAndFallBackToTheIdentityRamp)
{
    // The default table is empty, so it never fits 1 x 1 x 2.
    const std::string log = frameLog();
    EXPECT_NE(log.find("Wrong shanding table size\n"), std::string::npos) << log;
    EXPECT_EQ(log.find("rror"), std::string::npos) << log;

    // The fields stay; the image and the uniforms hold the ramp's size.
    EXPECT_EQ(filter->getTable().size(), 0u);
    EXPECT_EQ(filter->getDepth(), 2u);

    ChunkMaterialPtr mat = material();
    ASSERT_EQ(mat->getChunks().size(), 3u);
    TextureChunkPtr shading = shadingTexture();
    ASSERT_TRUE(shading != NullFC);
    ImagePtr img = shading->getImage();
    EXPECT_EQ(img->getWidth(), 1);
    EXPECT_EQ(img->getHeight(), 1);
    EXPECT_EQ(img->getDepth(), 2);
    EXPECT_EQ(img->getData()[0], 0);
    EXPECT_EQ(img->getData()[5], 255);
    EXPECT_EQ(shading->getMinFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(shading->getWrapR(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_FALSE(shading->getScale());
    EXPECT_EQ(shading->getNPOTMatrixScale(), 1u);

    SHLChunkPtr shl = shaderOf(mat);
    ASSERT_TRUE(shl != NullFC);
    Int32 depth = 0, unit = -1;
    EXPECT_TRUE(shl->getUniformParameter("shadingDepth", depth));
    EXPECT_TRUE(shl->getUniformParameter("shadingTexture", unit));
    EXPECT_EQ(depth, 2);
    EXPECT_EQ(unit, 1);
    EXPECT_FALSE(shl->hasUniformParameter("debugColor"));

    // Only the gamma of 2.4 acts.
    Table ramp(1, 1, 2);
    ramp.entries[0] = Vec3f(0.f, 0.f, 0.f);
    ramp.entries[1] = Vec3f(1.f, 1.f, 1.f);
    const UInt32 wrong = countWrong(
        "identity", grab("colour_identity"),
        [&](Int32 x, Int32 y) { return reference(blocks(x, y), x, y, 2.4f, Matrix(), ramp); },
        2);
    EXPECT_EQ(wrong, 0u);
}

TEST_F(ColourFilter, GammaMatrixAndTableMatchTheShaderMaths)
{
    const Table  table(3, 2, 4);
    const Matrix m = colourMatrix();
    setTable(table);
    beginEditCP(filter);
    filter->setGamma(1.8f);
    filter->setMatrix(m);
    endEditCP(filter);

    frame();

    Int32 w = 0, h = 0, d = 0;
    SHLChunkPtr shl = shaderOf(material());
    EXPECT_TRUE(shl->getUniformParameter("shadingWidth", w));
    EXPECT_TRUE(shl->getUniformParameter("shadingHeight", h));
    EXPECT_TRUE(shl->getUniformParameter("shadingDepth", d));
    EXPECT_EQ(w, 3);
    EXPECT_EQ(h, 2);
    EXPECT_EQ(d, 4);

    const UInt32 wrong = countWrong(
        "calibrated", grab("colour_calibrated"),
        [&](Int32 x, Int32 y) { return reference(blocks(x, y), x, y, 1.8f, m, table); }, 3);
    EXPECT_EQ(wrong, 0u);
}

TEST_F(ColourFilter, FieldEditsAfterTheBuildChangeNothing)
{
    const Table table(3, 2, 4);
    setTable(table);
    frame();
    const Picture before = grab();

    beginEditCP(filter);
    filter->setGamma(1.f);
    filter->setMatrix(colourMatrix());
    filter->getTable()[0] = Vec3f(1.f, 1.f, 1.f);
    endEditCP(filter);

    frame();
    EXPECT_TRUE(before.px == grab().px);

    Real32 gamma = 0.f;
    EXPECT_TRUE(shaderOf(material())->getUniformParameter("gamma", gamma));
    EXPECT_FLOAT_EQ(gamma, 2.4f);

    // A new build reads them.
    rebuild();
    frame();
    EXPECT_FALSE(before.px == grab().px);
    EXPECT_TRUE(shaderOf(material())->getUniformParameter("gamma", gamma));
    EXPECT_FLOAT_EQ(gamma, 1.f);
}

TEST_F(ColourFilter, TableSizeIsCheckedAgainstTheDimensions)
{
    // Exactly width * height * depth entries: no warning.
    setTable(Table(1, 1, 2));
    frame();

    // One entry short: warned, and the identity ramp stands in.
    Table short3(3, 2, 4);
    short3.entries.pop_back();
    setTable(short3);
    rebuild();
    EXPECT_NE(frameLog().find("Wrong shanding table size\n"), std::string::npos);
    EXPECT_EQ(filter->getTable().size(), 23u);
    EXPECT_EQ(filter->getWidth(), 3u);
    EXPECT_EQ(shadingTexture()->getImage()->getWidth(), 1);
    Int32 w = 0;
    EXPECT_TRUE(shaderOf(material())->getUniformParameter("shadingWidth", w));
    EXPECT_EQ(w, 1);

    // A zero size fits an empty table: no warning, an empty image.
    beginEditCP(filter);
    filter->setWidth(0);
    filter->getTable().clear();
    endEditCP(filter);
    rebuild();
    const std::string log = frameLog();
    EXPECT_EQ(log.find("Wrong shanding table size"), std::string::npos) << log;
    EXPECT_EQ(shadingTexture()->getImage()->getWidth(), 0);
    EXPECT_TRUE(shaderOf(material())->getUniformParameter("shadingWidth", w));
    EXPECT_EQ(w, 0);
}

TEST_F(ColourFilter, DebugModesShowTheTopOfTheTable)
{
    const Table table(3, 2, 4);
    setTable(table);
    beginEditCP(filter);
    filter->setDebugMode(1);
    filter->setDebugColor(Vec4f(0.2f, 0.4f, 0.6f, 1.f));
    endEditCP(filter);

    // The debug program compiles and links; it reads neither the grabbed
    // image nor (the colour being replaced) the table depth, so the chunk
    // reports those two uniforms as unknown to it, and nothing else.
    std::string log = frameLog();
    EXPECT_TRUE(onlyUnusedUniforms(log)) << log;

    SHLChunkPtr shl = shaderOf(material());
    Vec4f       probe;
    EXPECT_TRUE(shl->getUniformParameter("debugColor", probe));
    EXPECT_EQ(probe, Vec4f(0.2f, 0.4f, 0.6f, 1.f));
    EXPECT_NE(shl->getFragmentProgram().find("debugColor"), std::string::npos);
    EXPECT_EQ(shadingTexture()->getMinFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(shadingTexture()->getMagFilter(), GLenum(GL_LINEAR));

    // Mode 1: the top layer, interpolated across the screen, whatever the
    // picture.
    auto top = [&](Real32 fx, Real32 fy)
    {
        return Colour{table.linear(fx, fy, 3.f, 0), table.linear(fx, fy, 3.f, 1),
                      table.linear(fx, fy, 3.f, 2)};
    };
    UInt32 wrong = countWrong("debug linear", grab("colour_debug1"),
                              [&](Int32 x, Int32 y)
                              { return top((x + 0.5f) / W * 2.f, (y + 0.5f) / H * 1.f); },
                              3);
    EXPECT_EQ(wrong, 0u);

    // Mode 2: the same program with the nearest texel.
    beginEditCP(filter);
    filter->setDebugMode(2);
    endEditCP(filter);
    rebuild();
    log = frameLog();
    EXPECT_TRUE(onlyUnusedUniforms(log)) << log;
    EXPECT_EQ(shadingTexture()->getMinFilter(), GLenum(GL_NEAREST));
    EXPECT_EQ(shadingTexture()->getMagFilter(), GLenum(GL_NEAREST));
    EXPECT_NE(shaderOf(material())->getFragmentProgram().find("debugColor"), std::string::npos);

    auto nearest = [](Int32 p, Int32 size, UInt32 n) { return (p + 0.5f) / size * (n - 1) + 0.5f; };
    auto onEdge  = [&](Int32 x, Int32 y)
    {
        const Real32 fx = nearest(x, W, 3), fy = nearest(y, H, 2);
        return std::fabs(fx - std::round(fx)) < 0.02f || std::fabs(fy - std::round(fy)) < 0.02f;
    };
    wrong = countWrong("debug nearest", grab("colour_debug2"),
                       [&](Int32 x, Int32 y)
                       {
                           return top(std::floor(nearest(x, W, 3)),
                                      std::floor(nearest(y, H, 2)));
                       },
                       1, onEdge);
    EXPECT_EQ(wrong, 0u);

    // Back to the normal program: no probe colour.
    beginEditCP(filter);
    filter->setDebugMode(0);
    endEditCP(filter);
    rebuild();
    frame();
    EXPECT_FALSE(shaderOf(material())->hasUniformParameter("debugColor"));
    EXPECT_EQ(shaderOf(material())->getFragmentProgram().find("debugColor"), std::string::npos);
}
