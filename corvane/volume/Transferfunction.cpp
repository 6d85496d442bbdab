#include <OpenSG/Transferfunction.h>
#include <OpenSG/TransferTables.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <istream>
#include <ostream>

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

void Transferfunction::readControlPoints(std::istream &is, AlphaPoints &alphaPoints,
                                         ColorPoints &colorPoints)
{
    alphaPoints.clear();
    colorPoints.clear();

    // A token that isn't a number ends the file: the count of a list only
    // promises points, it doesn't reserve anything.
    int count = 0;
    if(is >> count)
    {
        for(int i = 0; i < count; ++i)
        {
            float position, alpha;
            if(!(is >> position >> alpha))
                break;
            alphaPoints.push_back(std::make_pair(position, alpha));
        }
    }

    count = 0;
    if(is >> count)
    {
        for(int i = 0; i < count; ++i)
        {
            float position, r, g, b;
            if(!(is >> position >> r >> g >> b))
                break;
            colorPoints.push_back(std::make_pair(position, FloatColor(r, g, b)));
        }
    }
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
    readControlPoints(in, alphaPoints, colorPoints);
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
