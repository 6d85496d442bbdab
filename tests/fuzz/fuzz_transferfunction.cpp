// libFuzzer target: arbitrary bytes through the transfer-function reader,
// then through both bakes, the prefix sum and the tables derived from it.
// Whatever the input, nothing may crash, leak or touch memory it does not
// own; what was read must write and read back to the same text.
//
// The tables are made once: each input is baked into the same images, so
// that an execution costs the input and one bake, not the making of
// textures. The 8-bit table and its prefix sum see every input; the 16-bit
// bake runs on a 64 x 64 half table (the same code, a sixteenth of the
// texels). One input in 64 also goes through the full 65536 texels,
// the dependent table and both pre-integration tables, which cost a whole
// table each whatever the input.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/SimpleTransferfunction.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace
{

std::string written(const Transferfunction::AlphaPoints &alpha,
                    const Transferfunction::ColorPoints &color)
{
    std::ostringstream out;
    Transferfunction::writeControlPoints(out, alpha, color);
    return out.str();
}

struct Tables
{
    PreintTransferFunction bytes;  ///< mode 0, its 256-texel table
    PreintTransferFunction halves; ///< mode 1, its 65536-texel table
    osg::ImagePtr          smallHalves;
    osg::ImagePtr          tooSmall;

    Tables(void)
    {
        bytes.setMode(0);
        bytes.createLinearTransfer(0);
        halves.setMode(1);
        halves.createLinearTransfer(1);

        smallHalves = osg::Image::create();
        osg::addRefCP(smallHalves);
        smallHalves->set(GL_RGBA, 64, 64, 1, 1, 1, 0.0, NULL, GL_HALF_FLOAT, true, 1);

        // a table too small for either layout
        tooSmall = osg::Image::create();
        osg::addRefCP(tooSmall);
        tooSmall->set(GL_RGBA, 3, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    }
};

Tables *tables = NULL;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgInit(0, NULL);
    // the unknown-format reports only slow the fuzzer down
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    tables = new Tables;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    Transferfunction::AlphaPoints alpha;
    Transferfunction::ColorPoints color;
    const bool read = Transferfunction::readControlPoints(in, alpha, color);
    if(!read && (!alpha.empty() || !color.empty()))
        std::abort(); // a refused file leaves nothing behind

    // six significant digits are a fixed point after one write
    const std::string  first = written(alpha, color);
    std::istringstream again(first);
    Transferfunction::AlphaPoints alpha2;
    Transferfunction::ColorPoints color2;
    if(!Transferfunction::readControlPoints(again, alpha2, color2) ||
       alpha2.size() != alpha.size() || color2.size() != color.size() ||
       written(alpha2, color2) != first)
        std::abort();

    PreintTransferFunction &bytes = tables->bytes;
    osg::ImagePtr           table = bytes.getTFTextureChunk()->getImage();
    bytes.setAlphaValues(table, alpha);
    bytes.setColorValues(table, color);
    bytes.calcSummedAreaTable();
    bytes.setAlphaValues(tables->tooSmall, alpha);
    bytes.setColorValues(tables->tooSmall, color);

    PreintTransferFunction &halves = tables->halves;
    halves.setAlphaValues(tables->smallHalves, alpha);
    halves.setColorValues(tables->smallHalves, color);
    halves.setAlphaValues(tables->tooSmall, alpha);

    unsigned int hash = 2166136261u;
    for(size_t i = 0; i < size; ++i)
        hash = (hash ^ data[i]) * 16777619u;
    if(hash % 64 == 0)
    {
        bytes.calcDependTransferTextur();
        bytes.calcPreIntTable(table);

        osg::ImagePtr full = halves.getTFTextureChunk()->getImage();
        halves.setAlphaValues(full, alpha);
        halves.setColorValues(full, color);
        halves.calcSummedAreaTable();
        halves.calcPreIntTable(full);
    }
    return 0;
}
