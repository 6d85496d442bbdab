#include <OpenSG/Transferfunction.h>
#include <OpenSG/TransferTables.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <istream>
#include <limits>
#include <ostream>
#include <string>

OSG_USING_NAMESPACE

const char *const Transferfunction::_compositeShader = R"GLSL(
void compositeColor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    outColor += (1.0 - outColor.a) * current.color;
}
)GLSL";

namespace
{

/// The table texels a bake of opacity covers: one row of the byte table,
/// the whole half table.
UInt32 texelCount(const ImagePtr &image, bool wholeImage)
{
    UInt64 w = UInt64(std::max(image->getWidth(), 0));
    UInt64 h = UInt64(std::max(image->getHeight(), 0));
    return UInt32(std::min<UInt64>(wholeImage ? w * h : w, 0xFFFFFFFFu));
}

} // namespace

Transferfunction::Transferfunction(bool)
    : _mode(0),
      _tfTexture(NullFC),
      _saTexture(NullFC),
      _dtTexture(NullFC),
      _checkerTC(NullFC)
{
    _alphaValues.push_back(std::make_pair(0.f, 0.f));
    _alphaValues.push_back(std::make_pair(1.f, 1.f));
    _colorValues.push_back(std::make_pair(0.f, FloatColor(0.f, 0.f, 0.f)));
    _colorValues.push_back(std::make_pair(1.f, FloatColor(1.f, 1.f, 1.f)));
}

Transferfunction::Transferfunction(const Transferfunction &)
    : _mode(0),
      _tfTexture(NullFC),
      _saTexture(NullFC),
      _dtTexture(NullFC),
      _checkerTC(NullFC)
{
}

Transferfunction::~Transferfunction(void)
{
    VolumeTextureUtils::release(_tfTexture);
    VolumeTextureUtils::release(_saTexture);
    VolumeTextureUtils::release(_dtTexture);
    VolumeTextureUtils::release(_checkerTC);
}

void Transferfunction::init(VolumeData *)
{
}

ImagePtr Transferfunction::getTableImage(void) const
{
    return _tfTexture != NullFC ? _tfTexture->getImage() : ImagePtr(NullFC);
}

bool Transferfunction::setTransferfunc(TextureChunkPtr texture)
{
    if(texture == NullFC)
        return false;

    beginEditCP(texture);
    VolumeTextureUtils::setSampling(texture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    texture->setInternalFormat(GL_RGBA16);
    endEditCP(texture);

    addRefCP(texture);
    VolumeTextureUtils::release(_tfTexture);
    _tfTexture = texture;
    return true;
}

// --- the file ---------------------------------------------------------------------

namespace
{

/// More points than the 16-bit table has texels can't each own one; a
/// list that long only costs memory.
const int MaxControlPoints = 65536;

enum NumberRead
{
    NumberOk,
    NumberEnds,      ///< not a number: the file ends here
    NumberOutOfRange ///< a number no float (or count) can hold: refused
};

template <class T>
NumberRead readNumber(std::istream &is, T &value)
{
    if(is >> value)
        return NumberOk;

    // A number too large for its type is stored as the type's extreme;
    // "nan" and "inf" stop extraction at their first letter.
    if(value == std::numeric_limits<T>::max() ||
       value == std::numeric_limits<T>::lowest())
        return NumberOutOfRange;

    is.clear();
    std::string token;
    is >> token;
    std::string word;
    for(char c : token)
    {
        if(c != '+' && c != '-')
            word += char(std::tolower(static_cast<unsigned char>(c)));
    }
    if(word.compare(0, 3, "nan") == 0 || word.compare(0, 3, "inf") == 0)
        return NumberOutOfRange;
    // the file ends here, for the other list too
    is.setstate(std::ios::failbit);
    return NumberEnds;
}

/// Reads `count` points of `components` numbers; false when one is out
/// of range or the list is too long (warned), true when it ends early.
template <class Point, class Make>
bool readList(std::istream &is, std::list<Point> &points, int components,
              const char *what, Make make)
{
    int        count  = 0;
    NumberRead status = readNumber(is, count);

    for(int i = 0; status == NumberOk && i < count; ++i)
    {
        float value[4];
        for(int c = 0; c < components && status == NumberOk; ++c)
            status = readNumber(is, value[c]);
        if(status != NumberOk)
            break;
        if(points.size() == size_t(MaxControlPoints))
        {
            FWARNING(("Transferfunction: more than %d %s points\n",
                      MaxControlPoints, what));
            return false;
        }
        points.push_back(make(value));
    }
    if(status == NumberOutOfRange)
    {
        FWARNING(("Transferfunction: a number of the %s points is not "
                  "finite or out of range\n", what));
        return false;
    }
    return true;
}

} // namespace

bool Transferfunction::readControlPoints(std::istream &is, AlphaPoints &alphaPoints,
                                         ColorPoints &colorPoints)
{
    alphaPoints.clear();
    colorPoints.clear();

    // A token that isn't a number ends the file: the count of a list only
    // promises points, it doesn't reserve anything.
    const bool ok =
        readList(is, alphaPoints, 2, "opacity",
                 [](const float *v) { return std::make_pair(v[0], v[1]); }) &&
        readList(is, colorPoints, 4, "colour", [](const float *v) {
            return std::make_pair(v[0], FloatColor(v[1], v[2], v[3]));
        });

    if(!ok)
    {
        alphaPoints.clear();
        colorPoints.clear();
    }
    return ok;
}

void Transferfunction::writeControlPoints(std::ostream &os, const AlphaPoints &alphaPoints,
                                          const ColorPoints &colorPoints)
{
    os << alphaPoints.size() << "\n";
    for(AlphaPoints::const_iterator it = alphaPoints.begin(); it != alphaPoints.end(); ++it)
        os << double(it->first) << " " << double(it->second) << "\n";

    os << colorPoints.size() << "\n";
    for(ColorPoints::const_iterator it = colorPoints.begin(); it != colorPoints.end(); ++it)
    {
        os << double(it->first) << " " << double(it->second.r) << " "
           << double(it->second.g) << " " << double(it->second.b) << "\n";
    }
}

bool Transferfunction::save(std::string fileName)
{
    std::ofstream out(fileName.c_str(), std::ios::out | std::ios::trunc);
    if(!out.is_open())
        return false;
    writeControlPoints(out, _alphaValues, _colorValues);
    return true;
}

bool Transferfunction::loadTransferfunction(std::string fileName)
{
    std::ifstream in(fileName.c_str());
    if(!in.is_open())
    {
        FWARNING(("Couldn't load file %s!\n", fileName.c_str()));
        return false;
    }
    AlphaPoints alphaPoints;
    ColorPoints colorPoints;
    if(!readControlPoints(in, alphaPoints, colorPoints))
    {
        FWARNING(("Couldn't load file %s!\n", fileName.c_str()));
        return false;
    }
    in.close();

    ImagePtr image = createTableImage(_mode);
    setAlphaValues(image, alphaPoints);
    setColorValues(image, colorPoints);
    attachTable(image);
    subRefCP(image);
    return true;
}

// --- baking -----------------------------------------------------------------------

ImagePtr Transferfunction::createTableImage(int mode)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    beginEditCP(image);
    if(mode != 0)
        image->set(GL_RGBA, 256, 256, 1, 1, 1, 0.0, NULL, GL_HALF_FLOAT, true, 1);
    else
        image->set(GL_RGBA, 256, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    endEditCP(image);
    return image;
}

ImagePtr Transferfunction::bakeCurrentPoints(int mode)
{
    ImagePtr image = createTableImage(mode);
    setAlphaValues(image, AlphaPoints(_alphaValues));
    setColorValues(image, ColorPoints(_colorValues));
    return image;
}

void Transferfunction::attachTable(ImagePtr image)
{
    VolumeTextureUtils::ensure(_tfTexture);
    beginEditCP(_tfTexture);
    _tfTexture->setImage(image);
    VolumeTextureUtils::setSampling(_tfTexture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    _tfTexture->setInternalFormat(GL_RGBA16);
    endEditCP(_tfTexture);
}

void Transferfunction::tableBaked(void)
{
    if(_tfTexture == NullFC)
        return;

    const BitVector dirtyMask =
        TextureChunk::DirtyMinXFieldMask | TextureChunk::DirtyMaxXFieldMask |
        TextureChunk::DirtyMinYFieldMask | TextureChunk::DirtyMaxYFieldMask |
        TextureChunk::DirtyMinZFieldMask | TextureChunk::DirtyMaxZFieldMask;
    beginEditCP(_tfTexture, dirtyMask);
    _tfTexture->setDirtyMinX(-1);
    _tfTexture->setDirtyMaxX(-1);
    _tfTexture->setDirtyMinY(-1);
    _tfTexture->setDirtyMaxY(-1);
    _tfTexture->setDirtyMinZ(-1);
    _tfTexture->setDirtyMaxZ(-1);
    endEditCP(_tfTexture, dirtyMask);

    beginEditCP(_tfTexture);
    endEditCP(_tfTexture);
}

void Transferfunction::setAlphaValues(ImagePtr &image, const AlphaPoints &points)
{
    // through a copy: the list may be this object's own
    AlphaPoints copy(points);
    _alphaValues.swap(copy);

    if(image != NullFC)
    {
        // the mode, not the image's type, decides the layout
        const bool halves = _mode != 0;
        TransferTables::bakeAlpha(image->getData(), image->getSize(), halves,
                                  texelCount(image, halves), _alphaValues);
    }
    tableBaked();
}

void Transferfunction::setColorValues(ImagePtr &image, const ColorPoints &points)
{
    ColorPoints copy(points);
    _colorValues.swap(copy);

    if(image != NullFC)
    {
        TransferTables::bakeColor(image->getData(), image->getSize(), _mode != 0,
                                  texelCount(image, true), _colorValues);
    }
    tableBaked();
}

// --- derived tables -----------------------------------------------------------------

bool Transferfunction::calcSummedAreaTable(void)
{
    ImagePtr table = getTableImage();
    if(table == NullFC)
    {
        FWARNING(("Die Transferfunction ist leer!\n"));
        return false;
    }

    const Int32  dataType = table->getDataType();
    const UInt32 w        = UInt32(std::max(table->getWidth(), 0));
    const UInt32 h        = UInt32(std::max(table->getHeight(), 0));
    if(dataType != GL_UNSIGNED_BYTE && dataType != GL_HALF_FLOAT)
    {
        std::puts("Format der Transferfunktion konnte nicht erkannt werden");
        return true;
    }

    const bool   halves = dataType == GL_HALF_FLOAT;
    const UInt32 rows   = halves ? h : 1;
    ImagePtr     sum    = Image::create();
    addRefCP(sum);
    beginEditCP(sum);
    sum->set(GL_ALPHA, w, rows, 1, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);
    Real32      *out   = reinterpret_cast<Real32 *>(sum->getData());
    const UInt32 count = texelCount(table, halves);
    if(out != NULL && sum->getSize() >= UInt64(count) * sizeof(Real32))
    {
        if(halves)
            TransferTables::prefixSumHalves(table->getData(), table->getSize(), count, out);
        else
            TransferTables::prefixSumBytes(table->getData(), table->getSize(), count, out);
    }
    endEditCP(sum);

    VolumeTextureUtils::ensure(_saTexture);
    beginEditCP(_saTexture);
    _saTexture->setInternalFormat(GL_ALPHA32F_ARB);
    _saTexture->setImage(sum);
    VolumeTextureUtils::setSampling(_saTexture, GL_CLAMP_TO_BORDER, GL_NEAREST);
    endEditCP(_saTexture);
    subRefCP(sum);
    return true;
}

bool Transferfunction::calcDependTransferTextur(void)
{
    if(_saTexture == NullFC || _saTexture->getImage() == NullFC)
    {
        FWARNING(("Die Summed Area Table ist leer\n"));
        return false;
    }
    ImagePtr table = getTableImage();
    if(table == NullFC)
    {
        FWARNING(("Die Transferfunction ist leer!\n"));
        return false;
    }

    const UInt32 n = UInt32(std::max(table->getWidth(), 0));
    ImagePtr     dt = Image::create();
    addRefCP(dt);
    beginEditCP(dt);
    dt->set(GL_ALPHA, n, n, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    UInt8 *out = dt->getData();
    if(out != NULL && dt->getSize() >= UInt64(n) * n)
        TransferTables::maxOpacityTable(table->getData(), table->getSize(), n, out);
    endEditCP(dt);

    VolumeTextureUtils::ensure(_dtTexture);
    beginEditCP(_dtTexture);
    _dtTexture->setInternalFormat(GL_ALPHA);
    _dtTexture->setImage(dt);
    VolumeTextureUtils::setSampling(_dtTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_dtTexture);
    subRefCP(dt);
    return true;
}
