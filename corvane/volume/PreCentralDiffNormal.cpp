#include <OpenSG/PreCentralDiffNormal.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define CORVANE_NORMALS_AVX2 1
#endif

OSG_USING_NAMESPACE

namespace
{

// The sampler is a uniform: compilers other than NVIDIA's refuse a bare
// sampler3D at global scope.
const char *const NormalShader = R"GLSL(
uniform sampler3D normalVolume;

void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    current.normal = vec3(2.0) * texture3D(normalVolume, current.position).rgb - vec3(1.0);
}
)GLSL";

/// The channel letters in the order of their codes.
const char ChannelLetters[] = "sSxyzgtp";

enum Channel
{
    ValueChannel,
    InnerValueChannel,
    NormalXChannel,
    NormalYChannel,
    NormalZChannel,
    LengthChannel,
    ThetaChannel,
    PhiChannel
};

const Real32 Pi    = 3.1415927f;
const Real32 TwoPi = 6.2831855f;

/// Below this many voxels a second thread costs more than it saves.
const UInt64 VoxelsPerThread = UInt64(1) << 20;

/// The output format, parsed once.
struct Format
{
    Channel channels[4];
    UInt32  count;
    bool    normalsOnly; ///< exactly "xyz", which the fast path writes
};

/// A component of the unit normal as a byte: -1 is 0, 0 is 127, 1 is 254.
inline UInt8 normalByte(Int32 g, Real32 inv)
{
    return UInt8(Int32(Real32(g) * inv * 127.f + 127.f));
}

/// acos of a value that rounding may have pushed just past +-1.
inline Real32 safeAcos(Real32 v)
{
    return std::acos(std::min(1.f, std::max(-1.f, v)));
}

/// One row of voxels and its four neighbour rows across y and z. centre is
/// the row padded with a zero voxel at each end, so that voxel x is
/// centre[x + 1] and both x neighbours are always readable; a neighbour row
/// outside the volume is a row of zeros.
struct RowNeighbours
{
    const UInt8 *centre;
    const UInt8 *below, *above; ///< y - 1, y + 1
    const UInt8 *front, *back;  ///< z - 1, z + 1
};

/// What a slab of slices needs to walk its rows.
class SlabWalker
{
  public:
    SlabWalker(const UInt8 *voxels, UInt32 w, UInt32 h, UInt32 d)
        : _voxels(voxels), _w(w), _h(h), _d(d), _padded(w + 2, 0), _zeros(w, 0)
    {
    }

    RowNeighbours row(UInt32 y, UInt32 z)
    {
        const UInt64 slice = UInt64(_w) * _h;
        const UInt8 *c     = _voxels + z * slice + UInt64(y) * _w;
        std::memcpy(_padded.data() + 1, c, _w);
        RowNeighbours r;
        r.centre = _padded.data();
        r.below  = y > 0 ? c - _w : _zeros.data();
        r.above  = y + 1 < _h ? c + _w : _zeros.data();
        r.front  = z > 0 ? c - slice : _zeros.data();
        r.back   = z + 1 < _d ? c + slice : _zeros.data();
        return r;
    }

  private:
    const UInt8       *_voxels;
    UInt32             _w, _h, _d;
    std::vector<UInt8> _padded;
    std::vector<UInt8> _zeros;
};

/// Voxels x to w - 1 of one row, each channel as the format names it.
void writeRow(const RowNeighbours &r,
              UInt32               x,
              UInt32               w,
              bool                 onFace,
              const Format        &format,
              UInt8               *out)
{
    for(; x < w; ++x)
    {
        const Int32  gx  = Int32(r.centre[x]) - Int32(r.centre[x + 2]);
        const Int32  gy  = Int32(r.below[x]) - Int32(r.above[x]);
        const Int32  gz  = Int32(r.front[x]) - Int32(r.back[x]);
        const Real32 len = std::sqrt(Real32(gx * gx + gy * gy + gz * gz));
        const Real32 inv = std::fabs(len) < 0.000001f ? 1.f : 1.f / len;
        const UInt8  v   = r.centre[x + 1];

        for(UInt32 c = 0; c < format.count; ++c)
        {
            UInt8 byte = 0;
            switch(format.channels[c])
            {
                case ValueChannel:      byte = v; break;
                case InnerValueChannel: byte = onFace || x == 0 || x + 1 == w ? 0 : v; break;
                case NormalXChannel:    byte = normalByte(gx, inv); break;
                case NormalYChannel:    byte = normalByte(gy, inv); break;
                case NormalZChannel:    byte = normalByte(gz, inv); break;
                case LengthChannel:
                    // the bound of 255 is a lower one, so this saturates
                    byte = UInt8(std::max(Int32(0.57735026f * len), 255));
                    break;
                case ThetaChannel:
                    byte = UInt8(Int32(255.f * safeAcos(Real32(gz) * inv) / Pi));
                    break;
                case PhiChannel:
                {
                    const Real32 nx  = Real32(gx) * inv;
                    const Real32 ny  = Real32(gy) * inv;
                    const Real32 rxy = std::sqrt(nx * nx + ny * ny);
                    Real32       phi = rxy == 0.f ? safeAcos(rxy) : safeAcos(nx / rxy);
                    if(ny < 0.f)
                        phi = TwoPi - phi;
                    byte = UInt8(Int32(255.f * phi / TwoPi));
                    break;
                }
            }
            *out++ = byte;
        }
    }
}

#ifdef CORVANE_NORMALS_AVX2

#define CORVANE_AVX2 __attribute__((target("avx2")))

/// pshufb masks that interleave three 16-byte channel vectors into 48
/// bytes of RGB: block k, channel c, byte j takes voxel (16k + j) / 3 of
/// channel c where (16k + j) % 3 == c, else zero.
struct InterleaveMasks
{
    alignas(16) signed char m[3][3][16];
};

constexpr InterleaveMasks makeInterleaveMasks(void)
{
    InterleaveMasks masks{};
    for(int k = 0; k < 3; ++k)
        for(int c = 0; c < 3; ++c)
            for(int j = 0; j < 16; ++j)
                masks.m[k][c][j] = (16 * k + j) % 3 == c ? (signed char)((16 * k + j) / 3)
                                                         : (signed char)0x80;
    return masks;
}

constexpr InterleaveMasks Interleave = makeInterleaveMasks();

CORVANE_AVX2 inline __m256 gradient8(const UInt8 *minus, const UInt8 *plus)
{
    const __m256i a = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(minus)));
    const __m256i b = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(plus)));
    return _mm256_cvtepi32_ps(_mm256_sub_epi32(a, b));
}

/// normalByte of eight components, as 32-bit integers; the same float
/// operations in the same order, so the same bytes.
CORVANE_AVX2 inline __m256i normalBytes8(__m256 g, __m256 inv)
{
    const __m256 k = _mm256_set1_ps(127.f);
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_mul_ps(g, inv), k), k));
}

/// The normals of voxels x to x + 7.
CORVANE_AVX2 inline void normals8(const RowNeighbours &r, UInt32 x, __m256i &nx, __m256i &ny, __m256i &nz)
{
    const __m256 gx = gradient8(r.centre + x, r.centre + x + 2);
    const __m256 gy = gradient8(r.below + x, r.above + x);
    const __m256 gz = gradient8(r.front + x, r.back + x);
    const __m256 s  = _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(gx, gx), _mm256_mul_ps(gy, gy)),
                                    _mm256_mul_ps(gz, gz));
    // a zero gradient divides by 1 instead, which is the rule for it
    const __m256 one = _mm256_set1_ps(1.f);
    const __m256 inv = _mm256_div_ps(one, _mm256_sqrt_ps(_mm256_max_ps(s, one)));
    nx               = normalBytes8(gx, inv);
    ny               = normalBytes8(gy, inv);
    nz               = normalBytes8(gz, inv);
}

/// Sixteen 32-bit values (0..254) to sixteen bytes in order.
CORVANE_AVX2 inline __m128i packBytes16(__m256i low, __m256i high)
{
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packs_epi32(low, high), 0xD8);
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

CORVANE_AVX2 inline __m128i interleaveBlock(const __m128i channels[3], int k)
{
    const __m128i *m = reinterpret_cast<const __m128i *>(Interleave.m[k]);
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(channels[0], _mm_load_si128(m)),
                                     _mm_shuffle_epi8(channels[1], _mm_load_si128(m + 1))),
                        _mm_shuffle_epi8(channels[2], _mm_load_si128(m + 2)));
}

/// "xyz" for the voxels of a row in blocks of 16; returns how many it
/// wrote, the rest is left to writeRow.
CORVANE_AVX2 UInt32 writeNormalsRowAVX2(const RowNeighbours &r, UInt32 w, UInt8 *out)
{
    UInt32 x = 0;
    for(; x + 16 <= w; x += 16, out += 48)
    {
        __m256i nx0, ny0, nz0, nx1, ny1, nz1;
        normals8(r, x, nx0, ny0, nz0);
        normals8(r, x + 8, nx1, ny1, nz1);
        const __m128i channels[3] = {packBytes16(nx0, nx1), packBytes16(ny0, ny1),
                                     packBytes16(nz0, nz1)};
        for(int k = 0; k < 3; ++k)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16 * k),
                             interleaveBlock(channels, k));
    }
    return x;
}

bool hasAVX2(void)
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

#endif

/// Slices z0 to z1 - 1 of the volume into out (the whole output image).
void writeSlab(const UInt8  *voxels,
               UInt32        w,
               UInt32        h,
               UInt32        d,
               UInt32        z0,
               UInt32        z1,
               const Format &format,
               UInt8        *out)
{
    SlabWalker   walker(voxels, w, h, d);
    const UInt64 rowBytes = UInt64(w) * format.count;
#ifdef CORVANE_NORMALS_AVX2
    const bool fast = format.normalsOnly && hasAVX2();
#endif
    for(UInt32 z = z0; z < z1; ++z)
    {
        for(UInt32 y = 0; y < h; ++y)
        {
            const RowNeighbours r      = walker.row(y, z);
            UInt8              *rowOut = out + (UInt64(z) * h + y) * rowBytes;
            UInt32              x      = 0;
#ifdef CORVANE_NORMALS_AVX2
            if(fast)
                x = writeNormalsRowAVX2(r, w, rowOut);
#endif
            const bool onFace = z == 0 || z + 1 == d || y == 0 || y + 1 == h;
            writeRow(r, x, w, onFace, format, rowOut + UInt64(x) * format.count);
        }
    }
}

/// Splits the slices into slabs, one for each core, while each slab keeps
/// enough voxels to be worth a thread. The threads end before this
/// returns; where none can be started the caller's thread does the work.
void writeVolume(const UInt8 *voxels, UInt32 w, UInt32 h, UInt32 d, const Format &format, UInt8 *out)
{
    const UInt64 voxelCount = UInt64(w) * h * d;
    UInt64       slabs      = std::max(1u, std::thread::hardware_concurrency());
    slabs                   = std::min<UInt64>(slabs, d);
    slabs                   = std::min<UInt64>(slabs, std::max<UInt64>(1, voxelCount / VoxelsPerThread));

    std::vector<std::thread> workers;
    for(UInt64 i = 1; i < slabs; ++i)
    {
        const UInt32 z0 = UInt32(d * i / slabs), z1 = UInt32(d * (i + 1) / slabs);
        try
        {
            workers.emplace_back(writeSlab, voxels, w, h, d, z0, z1, format, out);
        }
        catch(...)
        {
            writeSlab(voxels, w, h, d, z0, z1, format, out);
        }
    }
    writeSlab(voxels, w, h, d, 0, UInt32(d / slabs), format, out);
    for(std::thread &worker : workers)
        worker.join();
}

/// Parses the channel letters; false for an unknown one.
bool parseFormat(const std::string &outputFormat, Format &format)
{
    format.count = UInt32(outputFormat.size());
    for(UInt32 c = 0; c < format.count; ++c)
    {
        const char *letter = std::strchr(ChannelLetters, outputFormat[c]);
        if(outputFormat[c] == '\0' || letter == NULL)
            return false;
        format.channels[c] = Channel(letter - ChannelLetters);
    }
    format.normalsOnly = outputFormat == "xyz";
    return true;
}

} // namespace

PreCentralDiffNormal::PreCentralDiffNormal(void)
    : _computeNormals(1), _volumeData(NULL), _normalsTexture(NullFC)
{
}

PreCentralDiffNormal::PreCentralDiffNormal(TextureChunkPtr normals)
    : _computeNormals(normals == NullFC ? 1 : 0), _volumeData(NULL), _normalsTexture(normals)
{
    if(_normalsTexture != NullFC)
        addRefCP(_normalsTexture);
}

PreCentralDiffNormal::~PreCentralDiffNormal(void)
{
    VolumeTextureUtils::release(_normalsTexture);
}

std::string PreCentralDiffNormal::getFragmentShaderString(void)
{
    return NormalShader;
}

void PreCentralDiffNormal::setMaterialParameter(ChunkMaterialPtr &material,
                                                SHLChunkPtr      &shader,
                                                int              &textureUnit,
                                                VolumeData       *)
{
    if(material == NullFC || shader == NullFC)
        return;

    // a texture unit is counted only for a texture that was added
    if(_normalsTexture == NullFC)
        return;

    beginEditCP(material);
    material->addChunk(_normalsTexture, State::AutoSlotReplace);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("normalVolume", Int32(textureUnit));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}

void PreCentralDiffNormal::init(VolumeData *volumeData)
{
    if(volumeData == NULL)
        return;
    ImagePtr volume = volumeData->getVolumeImage();
    if(volume == NullFC)
        return;

    // normals of the right size are used as they are, whoever made them
    ImagePtr given = _normalsTexture != NullFC ? _normalsTexture->getImage() : ImagePtr(NullFC);
    if(given != NullFC && given->getWidth() == volume->getWidth() &&
       given->getHeight() == volume->getHeight() && given->getDepth() == volume->getDepth())
    {
        const BitVector mask = TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask |
                               TextureChunk::WrapSFieldMask | TextureChunk::WrapTFieldMask |
                               TextureChunk::WrapRFieldMask;
        beginEditCP(_normalsTexture, mask);
        VolumeTextureUtils::setSampling(_normalsTexture, GL_CLAMP_TO_EDGE, GL_LINEAR);
        endEditCP(_normalsTexture, mask);
        return;
    }

    ImagePtr normals = Image::create();
    addRefCP(normals);
    beginEditCP(normals);
    normals->set(GL_RGB, volume->getWidth(), volume->getHeight(), volume->getDepth(), 1, 1, 0.0,
                 NULL, GL_UNSIGNED_BYTE, true, 1);
    endEditCP(normals);

    createPrecomputedNormals(volume, normals, "xyz");

    VolumeTextureUtils::ensure(_normalsTexture);
    beginEditCP(_normalsTexture);
    _normalsTexture->setImage(normals);
    _normalsTexture->setInternalFormat(GL_RGB8);
    VolumeTextureUtils::setSampling(_normalsTexture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    endEditCP(_normalsTexture);
    subRefCP(normals);
    _volumeData = volumeData;
}

bool PreCentralDiffNormal::createPrecomputedNormals(ImagePtr          &inImage,
                                                    ImagePtr          &outImage,
                                                    std::string const &outputFormat)
{
    static const UInt32 PixelFormats[] = {GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
    if(outputFormat.empty() || outputFormat.size() > 4)
    {
        FFATAL(("Invalid outputFormat length in createNormalVolume: %d\n",
                int(outputFormat.size())));
        return false;
    }
    Format format;
    if(!parseFormat(outputFormat, format))
        return false;
    if(inImage == NullFC || outImage == NullFC)
        return false;

    // Anything but one byte a voxel is differentiated as 8-bit luminance,
    // from a copy: the caller's image stays as it is.
    ImagePtr source = inImage;
    if(source->getBpp() != 1)
    {
        source = Image::create();
        addRefCP(source);
        if(inImage->getPixelFormat() != GL_LUMINANCE)
            inImage->reformat(GL_LUMINANCE, source);
        else
            source->set(inImage);
        if(source->getDataType() != GL_UNSIGNED_BYTE)
            source->convertDataTypeTo(GL_UNSIGNED_BYTE);
    }

    const UInt32 w = UInt32(std::max(source->getWidth(), 0));
    const UInt32 h = UInt32(std::max(source->getHeight(), 0));
    const UInt32 d = UInt32(std::max(source->getDepth(), 0));

    beginEditCP(outImage);
    outImage->set(PixelFormats[format.count - 1], w, h, d, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE,
                  true, 1);
    const UInt64 voxelCount = UInt64(w) * h * d;
    const UInt8 *voxels     = source->getData();
    UInt8       *out        = outImage->getData();
    // a source that couldn't be brought to one byte a voxel, or that holds
    // fewer voxels than its edges say, leaves the result zero
    const bool readable = source->getBpp() == 1 && voxels != NULL && out != NULL &&
                          source->getSize() >= voxelCount &&
                          outImage->getSize() >= voxelCount * format.count;
    if(readable && voxelCount > 0)
        writeVolume(voxels, w, h, d, format, out);
    endEditCP(outImage);

    if(source != inImage)
        subRefCP(source);
    return readable || voxelCount == 0;
}
