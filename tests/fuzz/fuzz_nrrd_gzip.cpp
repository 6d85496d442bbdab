// libFuzzer target: compressed NRRD data. The first bytes of the input
// choose a header (type, sizes, byte order, gzip or bzip2, a byte skip)
// and what follows it: the rest of the input compressed (so that valid
// streams are common), that stream cut short or with one byte changed, or
// the rest as it is. Everything goes through the whole reader from
// memory; an accepted volume must have the announced size.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNRRDCodec.h>

#include <support/ZlibSupport.h>

#include <bzlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    return 0;
}

namespace
{

std::string compressed(const std::string &data, bool bzip2)
{
    std::string out(data.size() + data.size() / 50 + 700, '\0');

    if(bzip2)
    {
        unsigned int length = unsigned(out.size());
        if(BZ2_bzBuffToBuffCompress(&out[0], &length, const_cast<char *>(data.data()),
                                    unsigned(data.size()), 1, 0, 0) != BZ_OK)
            return std::string();
        out.resize(length);
        return out;
    }

    return corvanetest::deflated(data, true, 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace osg;

    static const char *const types[] = {"uchar", "short", "ushort", "uint", "float",
                                        "double", "char", "int"};
    if(size < 6)
        return 0;

    const bool bzip2 = (data[0] & 0x40) != 0;
    const int  mode  = data[0] >> 7 | (data[5] & 1) << 1; // 0..3
    std::string header = "NRRD0004\ntype: " + std::string(types[data[0] & 7]) +
                         "\ndimension: 3\nsizes: " + std::to_string(1 + data[1] % 16) + " " +
                         std::to_string(1 + data[2] % 16) + " " +
                         std::to_string(1 + data[3] % 16) + "\nendian: " +
                         ((data[0] & 8) ? "big" : "little") + "\nencoding: " +
                         (bzip2 ? "bzip2" : "gzip") + "\n";
    if(data[0] & 0x30)
        header += "byte skip: " + std::to_string(int(data[4] % 64) - ((data[0] & 0x20) ? 1 : 0)) +
                  "\n";
    header += "\n";

    const std::string rest(reinterpret_cast<const char *>(data) + 6, size - 6);
    std::string       payload = mode == 3 ? rest : compressed(rest, bzip2);

    if(mode == 1 && !payload.empty())
        payload.resize(size_t(data[4]) * payload.size() / 256);
    else if(mode == 2 && !payload.empty())
        payload[data[4] % payload.size()] ^= char(data[5] | 1);

    const std::string file = header + payload;
    VolumeLayout      layout;
    std::vector<UInt8> voxels;

    if(readNRRD(reinterpret_cast<const UInt8 *>(file.data()), file.size(), layout, voxels,
                1u << 20))
    {
        UInt64 fileBytes = 0, imageBytes = 0;
        if(!volumeByteCounts(layout, fileBytes, imageBytes, "fuzz") ||
           voxels.size() != imageBytes)
            std::abort();
    }
    return 0;
}
