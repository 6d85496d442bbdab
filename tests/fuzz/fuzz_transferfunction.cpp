// libFuzzer target: arbitrary bytes through the transfer-function reader,
// then through both bakes, the prefix sum and the tables derived from it.
// Whatever the input, nothing may crash, leak or touch memory it does not
// own; what was read must write and read back to the same text.
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

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgInit(0, NULL);
    // the unknown-format reports only slow the fuzzer down
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    Transferfunction::AlphaPoints alpha;
    Transferfunction::ColorPoints color;
    Transferfunction::readControlPoints(in, alpha, color);

    // six significant digits are a fixed point after one write
    const std::string  first = written(alpha, color);
    std::istringstream again(first);
    Transferfunction::AlphaPoints alpha2;
    Transferfunction::ColorPoints color2;
    Transferfunction::readControlPoints(again, alpha2, color2);
    if(alpha2.size() != alpha.size() || color2.size() != color.size() ||
       written(alpha2, color2) != first)
        std::abort();

    // both table layouts, and a table that is too small for either
    for(osg::Int32 mode : {0, 1})
    {
        PreintTransferFunction tf;
        tf.setMode(mode);
        tf.createLinearTransfer(mode);
        osg::ImagePtr table = tf.getTFTextureChunk()->getImage();
        tf.setAlphaValues(table, alpha);
        tf.setColorValues(table, color);
        tf.calcSummedAreaTable();
        if(mode == 0)
            tf.calcDependTransferTextur();
        tf.calcPreIntTable(table);

        osg::ImagePtr small = osg::Image::create();
        osg::addRefCP(small);
        small->set(GL_RGBA, 3, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
        tf.setAlphaValues(small, alpha);
        tf.setColorValues(small, color);
        osg::subRefCP(small);
    }
    return 0;
}
