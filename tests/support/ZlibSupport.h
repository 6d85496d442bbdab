/// zlib and gzip streams made in memory, for tests and fuzz targets that
/// feed compressed data to the loaders.
#ifndef _CORVANE_TESTS_ZLIBSUPPORT_H_
#define _CORVANE_TESTS_ZLIBSUPPORT_H_

#include <zlib.h>

#include <cstring>
#include <string>

namespace corvanetest
{

/// data deflated with a zlib header, or as one gzip member.
inline std::string deflated(const std::string &data, bool gzip, int level = 9)
{
    z_stream zs;
    std::memset(&zs, 0, sizeof(zs));
    if(deflateInit2(&zs, level, Z_DEFLATED, gzip ? 15 + 16 : 15, 8, Z_DEFAULT_STRATEGY) !=
       Z_OK)
        return std::string();
    std::string out(deflateBound(&zs, uLong(data.size())), '\0');
    zs.next_in   = reinterpret_cast<Bytef *>(const_cast<char *>(data.data()));
    zs.avail_in  = uInt(data.size());
    zs.next_out  = reinterpret_cast<Bytef *>(&out[0]);
    zs.avail_out = uInt(out.size());
    deflate(&zs, Z_FINISH);
    out.resize(zs.total_out);
    deflateEnd(&zs);
    return out;
}

} // namespace corvanetest

#endif
