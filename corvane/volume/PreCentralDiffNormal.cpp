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

/// The gradients of a span of a row of voxels, voxels begin to end - 1,
/// and their lengths, for the channels to be written from one after the
/// other. Spans keep the scratch small whatever the row's length.
struct RowGradients
{
    static const UInt32 Span = 256;

    /// Voxels from to end - 1 (of the span).
    void compute(const RowNeighbours &r, UInt32 from)
    {
        for(UInt32 x = from; x < end; ++x)
        {
            const UInt32 i = x - begin;
            gx[i]          = Int32(r.centre[x]) - Int32(r.centre[x + 2]);
            gy[i]          = Int32(r.below[x]) - Int32(r.above[x]);
            gz[i]          = Int32(r.front[x]) - Int32(r.back[x]);
            len[i]         = std::sqrt(Real32(gx[i] * gx[i] + gy[i] * gy[i] + gz[i] * gz[i]));
            inv[i]         = std::fabs(len[i]) < 0.000001f ? 1.f : 1.f / len[i];
        }
    }

    UInt32 begin, end;
    Int32  gx[Span], gy[Span], gz[Span];
    Real32 len[Span], inv[Span];
};

/// Every stride-th byte of out, one for each voxel x of the span, set to
/// value(x, i), i being x's place in the span.
template <class Value>
inline void fillChannel(const RowGradients &g, UInt32 stride, UInt8 *out, Value value)
{
    for(UInt32 x = g.begin; x < g.end; ++x, out += stride)
        *out = value(x, x - g.begin);
}

/// One channel of the voxels of a span of a row w voxels long, every
/// stride-th byte of out (which points at the span's first byte).
void writeChannel(Channel              channel,
                  const RowNeighbours &r,
                  const RowGradients  &g,
                  UInt32               w,
                  bool                 rowOnFace,
                  UInt32               stride,
                  UInt8               *out)
{
    switch(channel)
    {
        case ValueChannel:
            fillChannel(g, stride, out, [&](UInt32 x, UInt32) { return r.centre[x + 1]; });
            break;
        case InnerValueChannel:
            fillChannel(g, stride, out, [&](UInt32 x, UInt32) {
                return rowOnFace || x == 0 || x + 1 == w ? UInt8(0) : r.centre[x + 1];
            });
            break;
        case NormalXChannel:
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) { return normalByte(g.gx[i], g.inv[i]); });
            break;
        case NormalYChannel:
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) { return normalByte(g.gy[i], g.inv[i]); });
            break;
        case NormalZChannel:
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) { return normalByte(g.gz[i], g.inv[i]); });
            break;
        case LengthChannel:
            // the bound of 255 is a lower one, so this saturates
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) {
                return UInt8(std::max(Int32(0.57735026f * g.len[i]), 255));
            });
            break;
        case ThetaChannel:
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) {
                return UInt8(Int32(255.f * safeAcos(Real32(g.gz[i]) * g.inv[i]) / Pi));
            });
            break;
        case PhiChannel:
            fillChannel(g, stride, out, [&](UInt32, UInt32 i) {
                const Real32 nx  = Real32(g.gx[i]) * g.inv[i];
                const Real32 ny  = Real32(g.gy[i]) * g.inv[i];
                const Real32 rxy = std::sqrt(nx * nx + ny * ny);
                Real32       phi = rxy == 0.f ? safeAcos(rxy) : safeAcos(nx / rxy);
                if(ny < 0.f)
                    phi = TwoPi - phi;
                return UInt8(Int32(255.f * phi / TwoPi));
            });
            break;
    }
}

#ifdef CORVANE_NORMALS_AVX2

#define CORVANE_AVX2 __attribute__((target("avx2")))

/// minus - plus of eight voxels, as 32-bit integers.
CORVANE_AVX2 inline __m256i difference8(const UInt8 *minus, const UInt8 *plus)
{
    const __m256i a = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(minus)));
    const __m256i b = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(plus)));
    return _mm256_sub_epi32(a, b);
}

/// The gradient of voxels x to x + 7 and its squared length.
struct Gradient8
{
    CORVANE_AVX2 Gradient8(const RowNeighbours &r, UInt32 x)
        : ix(difference8(r.centre + x, r.centre + x + 2)),
          iy(difference8(r.below + x, r.above + x)),
          iz(difference8(r.front + x, r.back + x)),
          fx(_mm256_cvtepi32_ps(ix)),
          fy(_mm256_cvtepi32_ps(iy)),
          fz(_mm256_cvtepi32_ps(iz)),
          squared(_mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(fx, fx), _mm256_mul_ps(fy, fy)),
                                _mm256_mul_ps(fz, fz)))
    {
    }

    /// 1 / length, and 1 for a zero gradient, which is the rule for it.
    CORVANE_AVX2 __m256 inverseLength(void) const
    {
        const __m256 one = _mm256_set1_ps(1.f);
        return _mm256_div_ps(one, _mm256_sqrt_ps(_mm256_max_ps(squared, one)));
    }

    __m256i ix, iy, iz;
    __m256  fx, fy, fz;
    __m256  squared;
};

/// normalByte of eight components, as 32-bit integers: the same float
/// operations in the same order, so the same bytes.
CORVANE_AVX2 inline __m256i normalBytes8(__m256 g, __m256 inv)
{
    const __m256 k = _mm256_set1_ps(127.f);
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_mul_ps(g, inv), k), k));
}

/// "xyz" of the voxels of a row, eight at a time; returns how many it
/// wrote, the rest is left to the channel loops.
CORVANE_AVX2 UInt32 writeNormalsRowAVX2(const RowNeighbours &r, UInt32 w, UInt8 *out)
{
    // the three bytes of each 32-bit voxel to the low 12 bytes of each
    // lane, then the two lanes' 12 bytes next to each other
    const __m256i pack  = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,
                                           0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    const __m256i join  = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);
    UInt32        x     = 0;
    for(; x + 8 <= w; x += 8)
    {
        const Gradient8 g(r, x);
        const __m256    inv = g.inverseLength();
        __m256i         rgb = _mm256_or_si256(
            _mm256_or_si256(normalBytes8(g.fx, inv), _mm256_slli_epi32(normalBytes8(g.fy, inv), 8)),
            _mm256_slli_epi32(normalBytes8(g.fz, inv), 16));
        rgb = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(rgb, pack), join);

        // 24 bytes are the voxels'; the 8 behind them may be written over
        // while the row has that much room left, the next voxels fill them
        UInt8 *o = out + 3 * x;
        if(x + 11 <= w)
        {
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(o), rgb);
        }
        else
        {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(o), _mm256_castsi256_si128(rgb));
            _mm_storel_epi64(reinterpret_cast<__m128i *>(o + 16), _mm256_extracti128_si256(rgb, 1));
        }
    }
    return x;
}

/// RowGradients::compute for the voxels of a span, eight at a time;
/// returns the voxel it stopped at.
CORVANE_AVX2 UInt32 computeGradientsAVX2(const RowNeighbours &r, RowGradients &out)
{
    UInt32 x = out.begin;
    for(; x + 8 <= out.end; x += 8)
    {
        const Gradient8 g(r, x);
        const UInt32    i = x - out.begin;
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out.gx + i), g.ix);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out.gy + i), g.iy);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out.gz + i), g.iz);
        _mm256_storeu_ps(out.len + i, _mm256_sqrt_ps(g.squared));
        _mm256_storeu_ps(out.inv + i, g.inverseLength());
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
    RowGradients gradients;
    const UInt32 stride = format.count;
#ifdef CORVANE_NORMALS_AVX2
    const bool vector = hasAVX2();
    const bool fast   = format.normalsOnly && vector;
#endif
    for(UInt32 z = z0; z < z1; ++z)
    {
        for(UInt32 y = 0; y < h; ++y)
        {
            const RowNeighbours r      = walker.row(y, z);
            UInt8              *rowOut = out + (UInt64(z) * h + y) * w * stride;
            UInt32              x0     = 0;
#ifdef CORVANE_NORMALS_AVX2
            if(fast)
                x0 = writeNormalsRowAVX2(r, w, rowOut);
#endif
            const bool onFace = z == 0 || z + 1 == d || y == 0 || y + 1 == h;
            for(gradients.begin = x0; gradients.begin < w; gradients.begin = gradients.end)
            {
                gradients.end   = std::min(w, gradients.begin + RowGradients::Span);
                UInt32 computed = gradients.begin;
#ifdef CORVANE_NORMALS_AVX2
                if(vector)
                    computed = computeGradientsAVX2(r, gradients);
#endif
                gradients.compute(r, computed);
                for(UInt32 c = 0; c < format.count; ++c)
                    writeChannel(format.channels[c], r, gradients, w, onFace, stride,
                                 rowOut + UInt64(gradients.begin) * stride + c);
            }
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
    workers.reserve(slabs);
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
