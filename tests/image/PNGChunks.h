/// Writing PNG files chunk by chunk, for files no encoder would write.
#ifndef _CORVANE_TESTS_PNGCHUNKS_H_
#define _CORVANE_TESTS_PNGCHUNKS_H_

#include <OpenSG/OSGBaseTypes.h>

#include <zlib.h>

#include <string>

namespace pngchunks
{

/// A 32-bit number, big-endian.
inline void putU32(std::string &s, osg::UInt32 v)
{
    for(int shift = 24; shift >= 0; shift -= 8)
        s += char((v >> shift) & 0xFF);
}

/// A chunk: length, type, data, CRC of type and data.
inline void putChunk(std::string &s, const char *type, const std::string &data)
{
    putU32(s, osg::UInt32(data.size()));
    const std::string body = std::string(type, 4) + data;
    s += body;
    putU32(s, osg::UInt32(crc32(0, reinterpret_cast<const Bytef *>(body.data()),
                                uInt(body.size()))));
}

/// The signature and an IHDR for width x height RGBA of 8 bits.
inline std::string rgbaHead(osg::UInt32 width, osg::UInt32 height, bool interlaced = false)
{
    std::string s("\x89PNG\r\n\x1a\n", 8), ihdr;
    putU32(ihdr, width);
    putU32(ihdr, height);
    ihdr += std::string("\x08\x06\x00\x00", 4);
    ihdr += char(interlaced ? 1 : 0);
    putChunk(s, "IHDR", ihdr);
    return s;
}

} // namespace pngchunks

#endif
