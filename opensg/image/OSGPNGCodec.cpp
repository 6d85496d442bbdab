/// PNG codec on libpng with stream I/O.
///
/// libpng reports errors by calling our handler, which logs and longjmps
/// back to the setjmp in readHeader/readRows/writeImage. Those functions
/// hold nothing but plain data between setjmp and the libpng calls, and
/// every buffer libpng writes into belongs to the caller, so a jump never
/// skips a destructor and never leaks.
///
/// Decoded rows go into a buffer that grows row by row as libpng delivers
/// them: a header that announces a huge image over a few bytes of data
/// costs the rows that data holds, not the image it announced.

#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <istream>
#include <new>
#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

const double InchesPerMeter = 39.37007874;

bool hostIsLittleEndian(void)
{
    const UInt16 probe = 1;
    return *reinterpret_cast<const UInt8 *>(&probe) == 1;
}

void PNGCBAPI errorHandler(png_structp png, png_const_charp message)
{
    FFATAL(("PNG: %s\n", message));
    png_longjmp(png, 1);
}

void PNGCBAPI warningHandler(png_structp, png_const_charp message)
{
    FWARNING(("PNG: %s\n", message));
}

// The stream calls must not let an exception (a stream with exceptions()
// set) run through libpng's C frames, and png_error must not be called from
// inside a catch block, whose exception object the jump would leak.
void PNGCBAPI readData(png_structp png, png_bytep buffer, png_size_t length)
{
    std::istream *in = static_cast<std::istream *>(png_get_io_ptr(png));
    bool          ok = false;

    try
    {
        in->read(reinterpret_cast<char *>(buffer), std::streamsize(length));
        ok = static_cast<png_size_t>(in->gcount()) == length;
    }
    catch(...)
    {
        ok = false;
    }

    if(!ok)
        png_error(png, "unexpected end of data");
}

void PNGCBAPI writeData(png_structp png, png_bytep buffer, png_size_t length)
{
    std::ostream *out = static_cast<std::ostream *>(png_get_io_ptr(png));
    bool          ok  = false;

    try
    {
        out->write(reinterpret_cast<const char *>(buffer),
                   std::streamsize(length));
        ok = !out->fail();
    }
    catch(...)
    {
        ok = false;
    }

    if(!ok)
        png_error(png, "write error");
}

void PNGCBAPI flushData(png_structp png)
{
    std::ostream *out = static_cast<std::ostream *>(png_get_io_ptr(png));

    try
    {
        out->flush();
    }
    catch(...)
    {
    }
}

struct HeaderInfo
{
    UInt32 width;
    UInt32 height;
    UInt32 channels;
    UInt32 bitDepth;
    UInt32 ppmX;
    UInt32 ppmY;
    UInt64 rowBytes;
    int    passes; ///< 7 for interlaced files, else 1
};

// Reads everything up to the image data and sets up the transformations.
bool readHeader(png_structp png, png_infop info, HeaderInfo *header)
{
    if(setjmp(png_jmpbuf(png)))
        return false;

    png_read_info(png, info);

    const int colorType = png_get_color_type(png, info);
    const int bitDepth  = png_get_bit_depth(png, info);

    if(colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(png);

    if(colorType == PNG_COLOR_TYPE_GRAY && bitDepth < 8)
        png_set_expand_gray_1_2_4_to_8(png);

    if(png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);

    if(bitDepth == 16 && hostIsLittleEndian())
        png_set_swap(png);

    header->passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);

    header->width    = png_get_image_width(png, info);
    header->height   = png_get_image_height(png, info);
    header->channels = png_get_channels(png, info);
    header->bitDepth = png_get_bit_depth(png, info);
    header->rowBytes = png_get_rowbytes(png, info);

    // Only a resolution in metres means anything to Image; libpng answers 0
    // for a missing chunk or an unknown unit.
    header->ppmX = png_get_x_pixels_per_meter(png, info);
    header->ppmY = png_get_y_pixels_per_meter(png, info);

    return true;
}

/// Makes room for rows [0, count) in `data`, growing the capacity at most
/// to the whole image.
void growRows(std::vector<UInt8> &data, UInt64 rowBytes, UInt64 count,
              UInt64 total)
{
    const UInt64 needed = count * rowBytes;

    if(data.size() >= needed)
        return;

    if(data.capacity() < needed)
        data.reserve(size_t(std::min(total, std::max(needed,
                                                     2 * UInt64(data.capacity())))));
    data.resize(size_t(needed));
}

/// The rows top first, each pass of an interlaced file over all of them
/// as png_read_image does it. Throws std::bad_alloc (outside libpng).
bool readRows(png_structp png, const HeaderInfo *header,
              std::vector<UInt8> *data)
{
    if(setjmp(png_jmpbuf(png)))
        return false;

    const UInt64 total = header->rowBytes * header->height;

    for(int pass = 0; pass < header->passes; ++pass)
    {
        for(UInt32 y = 0; y < header->height; ++y)
        {
            growRows(*data, header->rowBytes, UInt64(y) + 1, total);
            png_read_row(png, data->data() + size_t(y) * header->rowBytes,
                         nullptr);
        }
    }

    // Up to IEND, so that a file cut after the image data is still refused.
    png_read_end(png, nullptr);

    return true;
}

/// Image keeps the bottom row first.
void flipRows(std::vector<UInt8> &data, size_t rowBytes, UInt32 height)
{
    std::vector<UInt8> row(rowBytes);

    for(UInt32 top = 0, bottom = height - 1; top < bottom; ++top, --bottom)
    {
        UInt8 *a = data.data() + size_t(top) * rowBytes;
        UInt8 *b = data.data() + size_t(bottom) * rowBytes;

        std::memcpy(row.data(), a, rowBytes);
        std::memcpy(a, b, rowBytes);
        std::memcpy(b, row.data(), rowBytes);
    }
}

bool writeImage(png_structp      png,
                png_infop        info,
                const PNGPixels *in,
                int              colorType,
                png_bytepp       rows)
{
    if(setjmp(png_jmpbuf(png)))
        return false;

    png_set_IHDR(png, info, in->width, in->height, int(in->bitDepth),
                 colorType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, in->pixelsPerMeterX, in->pixelsPerMeterY,
                 PNG_RESOLUTION_METER);
    png_write_info(png, info);

    if(in->bitDepth == 16 && hostIsLittleEndian())
        png_set_swap(png);

    png_write_image(png, rows);
    png_write_end(png, nullptr);

    return true;
}

} // namespace

bool readPNG(std::istream &in, PNGPixels &out)
{
    out = PNGPixels();
    out.pixelsPerMeterX = 0;
    out.pixelsPerMeterY = 0;

    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr,
                                             errorHandler, warningHandler);
    if(png == nullptr)
    {
        FFATAL(("PNG: could not create the read structure\n"));
        return false;
    }

    png_infop info = png_create_info_struct(png);

    if(info == nullptr)
    {
        png_destroy_read_struct(&png, nullptr, nullptr);
        FFATAL(("PNG: could not create the info structure\n"));
        return false;
    }

    png_set_read_fn(png, &in, readData);

    HeaderInfo header = {};
    bool       ok     = readHeader(png, info, &header);

    if(ok && header.bitDepth != 8 && header.bitDepth != 16)
    {
        FWARNING(("Invalid bit_depth: %u, can not read png-data\n",
                  header.bitDepth));
        ok = false;
    }

    if(ok && (header.channels < 1 || header.channels > 4 ||
              header.width == 0 || header.height == 0))
    {
        FFATAL(("PNG: unsupported layout, %u channels, %ux%u\n",
                header.channels, header.width, header.height));
        ok = false;
    }

    if(ok)
    {
        const UInt64 rowBytes = UInt64(header.width) * header.channels *
                                (header.bitDepth / 8);
        const UInt64 total    = rowBytes * header.height; // < 2^64: no wrap
        const UInt64 budget   = ImageFileHandler::the().getMaxImageBytes();

        if(rowBytes != header.rowBytes)
        {
            FFATAL(("PNG: unexpected row size %llu (expected "
                    "%llu)\n",
                    static_cast<unsigned long long>(header.rowBytes),
                    static_cast<unsigned long long>(rowBytes)));
            ok = false;
        }
        else if(total > budget)
        {
            FWARNING(("PNG: a %ux%u image with %u channels of %u bits is "
                      "larger than the %llu bytes allowed\n",
                      header.width, header.height, header.channels,
                      header.bitDepth,
                      static_cast<unsigned long long>(budget)));
            ok = false;
        }
    }

    if(ok)
    {
        try
        {
            ok = readRows(png, &header, &out.data);
        }
        catch(const std::bad_alloc &)
        {
            FFATAL(("PNG: out of memory for a %ux%u image\n", header.width,
                    header.height));
            ok = false;
        }
    }

    png_destroy_read_struct(&png, &info, nullptr);

    if(!ok)
    {
        out = PNGPixels();
        return false;
    }

    flipRows(out.data, size_t(header.rowBytes), header.height);

    out.width           = header.width;
    out.height          = header.height;
    out.channels        = header.channels;
    out.bitDepth        = header.bitDepth;
    out.pixelsPerMeterX = header.ppmX;
    out.pixelsPerMeterY = header.ppmY;

    return true;
}

bool writePNG(std::ostream &out, const PNGPixels &in)
{
    static const int colorTypes[5] = {-1, PNG_COLOR_TYPE_GRAY,
                                      PNG_COLOR_TYPE_GRAY_ALPHA,
                                      PNG_COLOR_TYPE_RGB,
                                      PNG_COLOR_TYPE_RGB_ALPHA};

    if(in.channels < 1 || in.channels > 4)
    {
        FWARNING(("PNG: cannot write %u channels\n", in.channels));
        return false;
    }

    if(in.bitDepth != 8 && in.bitDepth != 16)
    {
        FWARNING(("Invalid pixeldepth, cannot store data\n"));
        return false;
    }

    if(in.width == 0 || in.height == 0 || in.width > PNG_UINT_31_MAX ||
       in.height > PNG_UINT_31_MAX)
    {
        FWARNING(("PNG: cannot write a %ux%u image\n", in.width, in.height));
        return false;
    }

    const UInt64 rowBytes = UInt64(in.width) * in.channels * (in.bitDepth / 8);

    // Compared by division: width * height * bytes may not fit 64 bits.
    if(in.height > in.data.size() / rowBytes)
    {
        FWARNING(("PNG: %zu bytes of pixel data are too few for "
                  "a %ux%u image with %u channels of %u bits\n",
                  in.data.size(), in.width, in.height, in.channels,
                  in.bitDepth));
        return false;
    }

    std::vector<png_bytep> rows;

    try
    {
        rows.resize(in.height);
    }
    catch(const std::bad_alloc &)
    {
        FFATAL(("PNG: out of memory\n"));
        return false;
    }

    // libpng copies each row before transforming it, so the const_cast
    // never lets it write into the caller's pixels. Rows go out top first,
    // which is the last row of the data.
    UInt8 *base = const_cast<UInt8 *>(in.data.data());

    for(UInt32 i = 0; i < in.height; ++i)
        rows[i] = base + size_t(in.height - 1 - i) * size_t(rowBytes);

    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr,
                                              errorHandler, warningHandler);
    if(png == nullptr)
    {
        FFATAL(("PNG: could not create the write structure\n"));
        return false;
    }

    png_infop info = png_create_info_struct(png);

    if(info == nullptr)
    {
        png_destroy_write_struct(&png, nullptr);
        FFATAL(("PNG: could not create the info structure\n"));
        return false;
    }

    png_set_write_fn(png, &out, writeData, flushData);

    const bool ok = writeImage(png, info, &in, colorTypes[in.channels],
                               rows.data());

    png_destroy_write_struct(&png, &info);

    return ok;
}

bool readPNGFile(const char *fileName, PNGPixels &out)
{
    if(fileName == nullptr)
    {
        out = PNGPixels();
        FWARNING(("PNG: no file name given\n"));
        return false;
    }

    std::ifstream in(fileName, std::ios::in | std::ios::binary);

    if(!in)
    {
        out = PNGPixels();
        FWARNING(("PNG: could not open '%s' for reading\n", fileName));
        return false;
    }

    return readPNG(in, out);
}

bool writePNGFile(const char *fileName, const PNGPixels &in)
{
    if(fileName == nullptr)
    {
        FWARNING(("PNG: no file name given\n"));
        return false;
    }

    bool ok = false;

    {
        std::ofstream out(fileName,
                          std::ios::out | std::ios::binary | std::ios::trunc);

        if(!out)
        {
            FWARNING(("PNG: could not open '%s' for writing\n", fileName));
            return false;
        }

        ok = writePNG(out, in);

        out.close();

        if(ok && out.fail())
        {
            FWARNING(("PNG: could not finish writing '%s'\n", fileName));
            ok = false;
        }
    }

    // A half-written file would only be mistaken for a good one later.
    if(!ok)
        std::remove(fileName);

    return ok;
}

Real32 pngPixelsPerMeterToDpi(UInt32 pixelsPerMeter)
{
    return Real32(UInt32(pixelsPerMeter / InchesPerMeter + 0.5));
}

UInt32 pngDpiToPixelsPerMeter(Real32 dpi)
{
    if(!(dpi > 0.f))
        return 0;

    const double ppm = dpi * InchesPerMeter + 0.5;

    return ppm >= double(PNG_UINT_31_MAX) ? PNG_UINT_31_MAX : UInt32(ppm);
}

OSG_END_NAMESPACE
