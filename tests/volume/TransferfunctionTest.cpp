// The transfer-function classes: the file, the tables they build and how
// they hand them to the ray-casting material.
#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGReal16.h>

#include <gtest/gtest.h>
#include <support/LimitedRun.h>
#include <support/TextSupport.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <support/ScratchDir.h>

using namespace osg;
using corvanetest::contains;

namespace
{

std::string tempPath(const std::string &name)
{
    return corvanetest::scratchPath("tf_" + name);
}

std::string writeFile(const std::string &name, const std::string &text)
{
    std::string   path = tempPath(name);
    std::ofstream out(path.c_str(), std::ios::binary);
    out << text;
    return path;
}

std::string readFile(const std::string &path)
{
    std::ifstream      in(path.c_str(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

const UInt8 *tableBytes(Transferfunction &tf)
{
    return tf.getTFTextureChunk()->getImage()->getData();
}

float halfAt(const ImagePtr &image, UInt32 index)
{
    Real16 h;
    h.setBits(reinterpret_cast<const unsigned short *>(image->getData())[index]);
    return float(h);
}

} // namespace

// --- the file ------------------------------------------------------------------------------

TEST(TransferfunctionFile, FreshObjectSavesTheDefaultFile)
{
    SimpleTransferfunction tf;
    std::string            path = tempPath("default.tf");
    ASSERT_TRUE(tf.save(path));
    EXPECT_EQ(readFile(path), "2\n0 0\n1 1\n2\n0 0 0 0\n1 1 1 1\n");
}

TEST(TransferfunctionFile, SaveAfterLoadWritesWhatWasReadWithSixDigits)
{
    // unsorted points, any white space, more digits than are kept
    std::string path = writeFile("digits.tf", "3\t0.75 0.123456789\n0 0\n1   1\n"
                                              "2 0.5 0.1 0.2 0.3\n 0.25 1e-3 0.333333333 1\n");
    SimpleTransferfunction tf;
    ASSERT_TRUE(tf.loadTransferfunction(path));
    std::string saved = tempPath("digits-saved.tf");
    ASSERT_TRUE(tf.save(saved));
    EXPECT_EQ(readFile(saved), "3\n0.75 0.123457\n0 0\n1 1\n"
                               "2\n0.5 0.1 0.2 0.3\n0.25 0.001 0.333333 1\n");
}

TEST(TransferfunctionFile, MissingFileWarnsAndChangesNothing)
{
    SimpleTransferfunction tf;
    LogCapture             log;
    std::string            path = tempPath("missing.tf");
    EXPECT_FALSE(tf.loadTransferfunction(path));
    EXPECT_TRUE(contains(log.take(), "Couldn't load file " + path + "!\n"));
    EXPECT_EQ(tf.getTFTextureChunk(), NullFC);
    EXPECT_EQ(tf.getAlphaValues().size(), 2u);

    PreintTransferFunction preint;
    EXPECT_FALSE(preint.load(path));
    EXPECT_EQ(preint.getPreIntTable(), NullFC) << "no table built";
}

TEST(TransferfunctionFile, ShortAndMalformedFilesLoadWhatTheyHold)
{
    struct Case
    {
        const char *text;
        size_t      alphaPoints;
        size_t      colorPoints;
    } cases[] = {
        {"", 0, 0},
        {"3\n0 0\n0.5", 1, 0},
        {"2\n0 0\n1 1\n2\n0 0 0", 2, 0},
        {"abc", 0, 0},
        {"-5 2 0 0 0 0 1 1 1 1", 0, 2},
        {"2147483647 0 1", 1, 0},
        {"1 0.5 x 1 0 1 1 1", 0, 0},
        {"1 1e-50 0 1 0 1 1 1", 1, 1},
    };
    for(const Case &c : cases)
    {
        for(Int32 mode : {0, 1})
        {
            SimpleTransferfunction tf;
            tf.setMode(mode);
            ASSERT_TRUE(tf.loadTransferfunction(writeFile("short.tf", c.text))) << c.text;
            EXPECT_EQ(tf.getAlphaValues().size(), c.alphaPoints) << c.text;
            EXPECT_EQ(tf.getColorValues().size(), c.colorPoints) << c.text;
            ASSERT_NE(tf.getTFTextureChunk(), NullFC);
            EXPECT_TRUE(tf.calcSummedAreaTable());
            EXPECT_TRUE(tf.calcDependTransferTextur());
        }
    }
}

TEST(TransferfunctionFile, NumbersThatAreNotFiniteAreRefused)
{
    // not finite as written, too large for a float, or a count too large
    // for its integer: refused, with the file's line, nothing changed
    for(const char *text : {"2\n0 nan\n1 1\n", "1\n0 1e39\n", "1\n-1e39 0\n",
                            "1\n0 -inf\n", "1\n0 0\n1\n0 0 Infinity 0\n",
                            "99999999999999 0 1", "1\n0 0\n-99999999999 0 0 0 0\n",
                            "2\n0 0\n1 NaN(7)\n"})
    {
        for(Int32 mode : {0, 1})
        {
            SimpleTransferfunction tf;
            tf.setMode(mode);
            LogCapture        log;
            const std::string path = writeFile("nonfinite.tf", text);
            EXPECT_FALSE(tf.loadTransferfunction(path)) << text;
            const std::string logged = log.take();
            EXPECT_TRUE(contains(logged, "points is not finite or out of range")) << logged;
            EXPECT_TRUE(contains(logged, "Couldn't load file " + path + "!")) << logged;
            EXPECT_EQ(tf.getTFTextureChunk(), NullFC);
            EXPECT_EQ(tf.getAlphaValues().size(), 2u);
        }
    }
}

TEST(TransferfunctionFile, LoadsCostTheFileAndOneBake)
{
    // 65536 points jumping between 0 and 1 in each list: 51 s in 16-bit
    // mode when every segment was walked, now one bake of the table
    std::string text = "65536\n";
    for(int p = 0; p < 65536; ++p)
        text += std::to_string(p & 1) + " " + std::to_string(p % 7) + "\n";
    text += "65536\n";
    for(int p = 0; p < 65536; ++p)
        text += std::to_string(p & 1) + " 0.5 " + std::to_string(p % 3) + " 1\n";
    const std::string path = writeFile("jumps.tf", text);

    const corvanetest::LimitedResult r = corvanetest::runLimited(
        [path]() {
            SimpleTransferfunction tf;
            tf.setMode(1);
            return tf.loadTransferfunction(path) && tf.getAlphaValues().size() == 65536 &&
                   tf.calcSummedAreaTable();
        },
        20);
    EXPECT_EQ(r.signal, 0) << "killed: over the time limit";
    EXPECT_TRUE(r.passed) << r.log;

    // one point more than a 16-bit table has texels is refused
    std::string tooMany = "65537\n";
    for(int p = 0; p < 65537; ++p)
        tooMany += "0 1\n";
    const std::string longer = writeFile("long.tf", tooMany);
    SimpleTransferfunction tf;
    LogCapture             log;
    EXPECT_FALSE(tf.loadTransferfunction(longer));
    EXPECT_TRUE(contains(log.take(), "Transferfunction: more than 65536 opacity points"));
}

TEST(TransferfunctionFile, LoadBuildsTheTableOfTheMode)
{
    std::string path = writeFile("ramp.tf", "2\n0 0\n1 1\n2\n0 0 0 0\n1 1 1 1\n");

    SimpleTransferfunction bytes;
    ASSERT_TRUE(bytes.load(path));
    ImagePtr table = bytes.getTFTextureChunk()->getImage();
    EXPECT_EQ(table->getWidth(), 256);
    EXPECT_EQ(table->getHeight(), 1);
    EXPECT_EQ(table->getPixelFormat(), UInt32(GL_RGBA));
    EXPECT_EQ(table->getDataType(), Int32(GL_UNSIGNED_BYTE));
    EXPECT_EQ(tableBytes(bytes)[255 * 4 + 3], 254);
    EXPECT_EQ(tableBytes(bytes)[255 * 4 + 0], 254);
    TextureChunkPtr chunk = bytes.getTFTextureChunk();
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_RGBA16));
    EXPECT_EQ(chunk->getWrapS(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_EQ(chunk->getMinFilter(), GLenum(GL_LINEAR));

    SimpleTransferfunction halves;
    halves.setMode(1);
    ASSERT_TRUE(halves.load(path));
    table = halves.getTFTextureChunk()->getImage();
    EXPECT_EQ(table->getHeight(), 256);
    EXPECT_EQ(table->getDataType(), Int32(GL_HALF_FLOAT));
    EXPECT_EQ(halfAt(table, 32768 * 4 + 3), 0.5f);
}

// --- tables ---------------------------------------------------------------------------------

TEST(TransferfunctionTables, BakingTheObjectsOwnListIsSafe)
{
    SimpleTransferfunction tf;
    tf.createLinearTransfer(0);
    ImagePtr image = tf.getTFTextureChunk()->getImage();
    Transferfunction::ColorPoints colours;
    colours.push_back(std::make_pair(0.f, FloatColor(1.f, 0.f, 0.f)));
    colours.push_back(std::make_pair(1.f, FloatColor(1.f, 0.f, 0.f)));
    tf.setColorValues(image, colours);
    tf.setColorValues(image, tf.getColorValues());
    tf.setAlphaValues(image, tf.getAlphaValues());
    EXPECT_EQ(tf.getColorValues().size(), 2u);
    EXPECT_EQ(tableBytes(tf)[100 * 4 + 0], 255);
    EXPECT_EQ(tableBytes(tf)[100 * 4 + 1], 0);
    EXPECT_EQ(tableBytes(tf)[128 * 4 + 3], 127);
}

TEST(TransferfunctionTables, PrefixSumOfEightBitTableCountsBytes)
{
    SimpleTransferfunction tf;
    {
        LogCapture log;
        EXPECT_FALSE(tf.calcSummedAreaTable());
        EXPECT_TRUE(contains(log.take(), "Die Transferfunction ist leer!\n"));
    }
    tf.createLinearTransfer(0);
    ASSERT_TRUE(tf.calcSummedAreaTable());
    TextureChunkPtr sa  = tf.getSATextureChunk();
    ImagePtr        sum = sa->getImage();
    EXPECT_EQ(sum->getPixelFormat(), UInt32(GL_ALPHA));
    EXPECT_EQ(sum->getDataType(), Int32(GL_FLOAT));
    EXPECT_EQ(sum->getWidth(), 256);
    float expected = 0.f;
    for(int k = 0; k < 256; ++k)
        expected += float(255 * k / 256);
    EXPECT_EQ(reinterpret_cast<const Real32 *>(sum->getData())[255], expected);
    EXPECT_EQ(sa->getInternalFormat(), GLenum(GL_ALPHA32F_ARB));
    EXPECT_EQ(sa->getWrapR(), GLenum(GL_CLAMP_TO_BORDER));
    EXPECT_EQ(sa->getMagFilter(), GLenum(GL_NEAREST));
}

TEST(TransferfunctionTables, PrefixSumOfHalfTableRunsOverAllRows)
{
    SimpleTransferfunction tf;
    tf.setMode(1);
    tf.createLinearTransfer(1);
    ASSERT_TRUE(tf.calcSummedAreaTable());
    ImagePtr sum = tf.getSATextureChunk()->getImage();
    EXPECT_EQ(sum->getWidth(), 256);
    EXPECT_EQ(sum->getHeight(), 256);
    const Real32 *s = reinterpret_cast<const Real32 *>(sum->getData());
    EXPECT_NEAR(s[65535], 32767.5f, 200.f) << "the sum of the ramp k / 65536";
    EXPECT_GT(s[256], s[255]);
}

TEST(TransferfunctionTables, UnknownTableTypeIsReportedAndKeepsThePrefixSum)
{
    ImagePtr image = Image::create();
    image->set(GL_RGBA, 4, 1, 1, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);

    SimpleTransferfunction tf;
    ASSERT_TRUE(tf.setFunc(chunk));
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_RGBA16));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(tf.calcSummedAreaTable());
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Format der Transferfunktion konnte nicht erkannt werden\n");
    EXPECT_EQ(tf.getSATextureChunk(), NullFC);

    LogCapture log;
    EXPECT_FALSE(tf.calcDependTransferTextur());
    EXPECT_TRUE(contains(log.take(), "Die Summed Area Table ist leer\n"));
    EXPECT_FALSE(tf.setFunc(NullFC));
}

TEST(TransferfunctionTables, DependentTableHoldsRangeMaxima)
{
    SimpleTransferfunction tf;
    tf.createLinearTransfer(0);
    ASSERT_TRUE(tf.calcSummedAreaTable());
    ASSERT_TRUE(tf.calcDependTransferTextur());
    TextureChunkPtr dt    = tf.getDTTextureChunk();
    ImagePtr        image = dt->getImage();
    EXPECT_EQ(image->getWidth(), 256);
    EXPECT_EQ(image->getHeight(), 256);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_ALPHA));
    const UInt8 *d = image->getData();
    EXPECT_EQ(d[255 * 256 + 0], 254) << "the ramp's largest opacity";
    EXPECT_EQ(d[100 * 256 + 50], UInt8(255 * 100 / 256));
    EXPECT_EQ(d[50 * 256 + 100], 0) << "above the diagonal";
    EXPECT_EQ(dt->getInternalFormat(), GLenum(GL_ALPHA));
    EXPECT_EQ(dt->getMinFilter(), GLenum(GL_NEAREST));
}

TEST(TransferfunctionTables, InitRebuildsOnlyATableOfTheWrongKind)
{
    SimpleTransferfunction tf;
    tf.init(NULL);
    ASSERT_NE(tf.getTFTextureChunk(), NullFC);
    EXPECT_EQ(tf.getTFTextureChunk()->getImage()->getDataType(), Int32(GL_UNSIGNED_BYTE));

    tf.setMode(1);
    tf.init(NULL);
    EXPECT_EQ(tf.getTFTextureChunk()->getImage()->getDataType(), Int32(GL_HALF_FLOAT));

    tf.setMode(0);
    tf.init(NULL);
    ImagePtr fitting = tf.getTFTextureChunk()->getImage();
    EXPECT_EQ(fitting->getDataType(), Int32(GL_UNSIGNED_BYTE));
    tf.init(NULL);
    EXPECT_EQ(tf.getTFTextureChunk()->getImage(), fitting) << "a fitting table stays";
}

TEST(TransferfunctionTables, CopyCarriesNothing)
{
    SimpleTransferfunction tf;
    tf.setMode(1);
    tf.createLinearTransfer(1);
    SimpleTransferfunction copy(tf);
    EXPECT_EQ(copy.getMode(), 0);
    EXPECT_EQ(copy.getTFTextureChunk(), NullFC);
    EXPECT_TRUE(copy.getAlphaValues().empty());
    EXPECT_TRUE(copy.getColorValues().empty());
}

// --- pre-integration ------------------------------------------------------------------------

TEST(PreintTransferFunctionTables, EightBitTableOfAveragesWithPremultipliedDiagonal)
{
    PreintTransferFunction tf;
    tf.createLinearTransfer(0);
    TextureChunkPtr preInt = tf.getPreIntTable();
    ASSERT_NE(preInt, NullFC);
    ImagePtr table = preInt->getImage();
    EXPECT_EQ(table->getWidth(), 256);
    EXPECT_EQ(table->getHeight(), 256);
    EXPECT_EQ(table->getDataType(), Int32(GL_HALF_FLOAT));
    EXPECT_EQ(preInt->getInternalFormat(), GLenum(GL_RGBA16F_ARB));
    EXPECT_EQ(preInt->getMinFilter(), GLenum(GL_LINEAR));

    // the grey ramp: texel k has colour and opacity c = (255 k / 256) / 255
    const double c200 = UInt8(255 * 200 / 256) / 255.0;
    EXPECT_NEAR(halfAt(table, (200 * 256 + 200) * 4 + 0), c200 * c200, 1e-3);
    EXPECT_NEAR(halfAt(table, (200 * 256 + 200) * 4 + 3), c200, 1e-3);
    EXPECT_EQ(halfAt(table, (10 * 256 + 90) * 4 + 3), halfAt(table, (90 * 256 + 10) * 4 + 3));
    EXPECT_GT(halfAt(table, (10 * 256 + 90) * 4 + 3), halfAt(table, (10 * 256 + 10) * 4 + 3));
}

TEST(PreintTransferFunctionTables, SixteenBitIntegralTable)
{
    PreintTransferFunction tf;
    tf.setMode(1);
    tf.createLinearTransfer(1);
    TextureChunkPtr preInt = tf.getPreIntTable();
    ASSERT_NE(preInt, NullFC);
    ImagePtr table = preInt->getImage();
    EXPECT_EQ(table->getDataType(), Int32(GL_FLOAT));
    EXPECT_EQ(preInt->getInternalFormat(), GLenum(GL_RGBA32F_ARB));
    EXPECT_EQ(preInt->getMagFilter(), GLenum(GL_NEAREST));
    const Real32 *integral = reinterpret_cast<const Real32 *>(table->getData());
    EXPECT_EQ(integral[3], 0.f);
    // the integral of the opacity ramp t over 65535 steps is about 65535 / 2
    EXPECT_NEAR(integral[65535 * 4 + 3], 32767.5f, 20.f);
    EXPECT_EQ(tf.getTFTextureChunk()->getMinFilter(), GLenum(GL_LINEAR))
        << "the bake sets linear filters after the integral";
}

TEST(PreintTransferFunctionTables, InitTakesTheModeFromTheVolume)
{
    ImagePtr image = Image::create();
    image->set(GL_LUMINANCE, 2, 2, 2, 1, 1, 0.0, NULL, GL_UNSIGNED_SHORT, true, 1);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    testing::internal::CaptureStdout();
    VolumeData volume;
    volume.setVolume(chunk, false);
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();

    PreintTransferFunction tf;
    tf.init(&volume);
    EXPECT_EQ(tf.getMode(), 1);
    EXPECT_EQ(tf.getTFTextureChunk()->getImage()->getDataType(), Int32(GL_HALF_FLOAT));
    EXPECT_EQ(tf.getPreIntTable()->getImage()->getDataType(), Int32(GL_FLOAT));

    tf.init(NULL);
    EXPECT_EQ(tf.getMode(), 0);
    EXPECT_EQ(tf.getTFTextureChunk()->getImage()->getDataType(), Int32(GL_UNSIGNED_BYTE));
    EXPECT_EQ(tf.getPreIntTable()->getImage()->getDataType(), Int32(GL_HALF_FLOAT));
}

TEST(PreintTransferFunctionTables, NullImageWarnsAndOtherModesBuildNothing)
{
    PreintTransferFunction tf;
    {
        LogCapture log;
        EXPECT_FALSE(tf.calcPreIntTable(NullFC));
        EXPECT_TRUE(contains(log.take(), "Transferfunction does not exist! Preintegration "
                                         "could not be calculated.\n"));
    }
    tf.setMode(2);
    tf.createLinearTransfer(1);
    EXPECT_TRUE(tf.calcPreIntTable(tf.getTFTextureChunk()->getImage()));
    EXPECT_EQ(tf.getPreIntTable(), NullFC);
    EXPECT_FALSE(tf.setFunc(NullFC));
}

// --- the material ---------------------------------------------------------------------------

TEST(TransferfunctionMaterial, SimpleAddsItsTableAndCountsOneUnit)
{
    SimpleTransferfunction tf;
    tf.createLinearTransfer(0);
    ChunkMaterialPtr material = ChunkMaterial::create();
    SHLChunkPtr      shader   = SHLChunk::create();
    addRefCP(material);
    addRefCP(shader);
    int              unit     = 5;
    tf.setMaterialParameter(material, shader, unit, NULL);
    EXPECT_EQ(unit, 6);
    ASSERT_EQ(material->getChunks().size(), 1u);
    EXPECT_EQ(material->getChunks(0), StateChunkPtr(tf.getTFTextureChunk()));
    Int32  sampler = -1;
    Real32 factor  = 0.f;
    EXPECT_TRUE(shader->getUniformParameter("transferFunction", sampler));
    EXPECT_TRUE(shader->getUniformParameter("correctionFactor", factor));
    EXPECT_EQ(sampler, 5);
    EXPECT_EQ(factor, 200.f);

    ChunkMaterialPtr none   = NullFC;
    int              before = unit;
    tf.setMaterialParameter(none, shader, unit, NULL);
    EXPECT_EQ(unit, before);
    subRefCP(material);
    subRefCP(shader);
}

TEST(TransferfunctionMaterial, PreintSixteenBitAddsBothTables)
{
    PreintTransferFunction tf;
    tf.setMode(1);
    tf.createLinearTransfer(1);
    ChunkMaterialPtr material = ChunkMaterial::create();
    SHLChunkPtr      shader   = SHLChunk::create();
    addRefCP(material);
    addRefCP(shader);
    int              unit     = 3;
    tf.setMaterialParameter(material, shader, unit, NULL);
    EXPECT_EQ(unit, 5);
    ASSERT_EQ(material->getChunks().size(), 2u);
    EXPECT_EQ(material->getChunks(0), StateChunkPtr(tf.getPreIntTable()));
    EXPECT_EQ(material->getChunks(1), StateChunkPtr(tf.getTFTextureChunk()));
    Int32 preInt = -1, table = -1;
    EXPECT_TRUE(shader->getUniformParameter("preIntTable", preInt));
    EXPECT_TRUE(shader->getUniformParameter("transferFunction", table));
    EXPECT_EQ(preInt, 3);
    EXPECT_EQ(table, 4);

    PreintTransferFunction eightBit;
    eightBit.createLinearTransfer(0);
    ChunkMaterialPtr other = ChunkMaterial::create();
    SHLChunkPtr      prog  = SHLChunk::create();
    addRefCP(other);
    addRefCP(prog);
    unit = 0;
    eightBit.setMaterialParameter(other, prog, unit, NULL);
    EXPECT_EQ(unit, 1);
    EXPECT_EQ(other->getChunks().size(), 1u);
    EXPECT_FALSE(prog->hasUniformParameter("transferFunction"));
    for(FieldContainerPtr fc : {FieldContainerPtr(material), FieldContainerPtr(shader),
                                FieldContainerPtr(other), FieldContainerPtr(prog)})
        subRefCP(fc);
}

TEST(TransferfunctionMaterial, ShaderTextFollowsTheMode)
{
    SimpleTransferfunction simple;
    EXPECT_TRUE(contains(simple.getFragmentShaderString(), "sampler1D transferFunction"));
    simple.setMode(1);
    EXPECT_TRUE(contains(simple.getFragmentShaderString(), "sampler2D transferFunction"));
    simple.setMode(2);
    EXPECT_EQ(simple.getFragmentShaderString(), "");

    PreintTransferFunction preint;
    EXPECT_FALSE(contains(preint.getFragmentShaderString(), "transferFunction"));
    preint.setMode(7);
    EXPECT_TRUE(contains(preint.getFragmentShaderString(), "getTextureCoordinates"));
}

// --- the presets in data/ -------------------------------------------------------------------

namespace
{

std::string dataPath(const std::string &name)
{
    const char *root = std::getenv("CORVANE_SOURCE_DIR");
    std::string base = root != NULL ? std::string(root) : std::string(__FILE__);
    if(root == NULL)
        base = base.substr(0, base.rfind("/tests/volume/"));
    return base + "/data/" + name;
}

/// The opacity of table texel k, 0 to 1.
float opacityAt(Transferfunction &tf, UInt32 k)
{
    ImagePtr table = tf.getTFTextureChunk()->getImage();
    if(table->getDataType() == GL_HALF_FLOAT)
        return halfAt(table, k * 4 + 3);
    return table->getData()[k * 4 + 3] / 255.f;
}

} // namespace

TEST(TransferfunctionPresets, FitThePhantom)
{
    struct Preset
    {
        const char *volume;
        const char *function;
        UInt32      skull;
    } presets[] = {{"phantom32_u8.dat", "phantom_bone_skin_u8.tf", 200},
                   {"phantom32_u16.nrrd", "phantom_bone_skin_u16.tf", 60000}};
    for(const Preset &p : presets)
    {
        testing::internal::CaptureStdout();
        VolumeData volume;
        bool       loaded = volume.loadVolume(dataPath(p.volume), false);
        std::fflush(stdout);
        testing::internal::GetCapturedStdout();
        ASSERT_TRUE(loaded) << p.volume;

        SimpleTransferfunction tf;
        tf.setMode(volume.getVolumeImage()->getDataType() == GL_UNSIGNED_SHORT ? 1 : 0);
        ASSERT_TRUE(tf.load(dataPath(p.function))) << p.function;

        // every density level of the phantom: air unseen, the skull nearly
        // opaque, each tissue level faint but there
        ImagePtr     image  = volume.getVolumeImage();
        const UInt64 voxels = UInt64(image->getWidth()) * image->getHeight() * image->getDepth();
        std::set<UInt32> levels;
        for(UInt64 i = 0; i < voxels; ++i)
        {
            levels.insert(tf.getMode() == 1
                              ? reinterpret_cast<const UInt16 *>(image->getData())[i]
                              : image->getData()[i]);
        }
        ASSERT_GT(levels.size(), 3u) << p.volume;
        for(UInt32 level : levels)
        {
            float alpha = opacityAt(tf, level);
            if(level == 0)
                EXPECT_EQ(alpha, 0.f) << p.function;
            else if(level == p.skull)
                EXPECT_GE(alpha, 0.75f) << p.function;
            else
            {
                EXPECT_GT(alpha, 0.f) << p.function << " level " << level;
                EXPECT_LE(alpha, 0.05f) << p.function << " level " << level;
            }
        }
    }
}
