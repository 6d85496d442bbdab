#ifndef _TRANSFERFUNCTION_H_
#define _TRANSFERFUNCTION_H_

#include <OpenSG/FloatColor.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include <iosfwd>
#include <list>
#include <string>
#include <utility>

class VolumeData;

/// The classification strategy of the ray caster: maps voxel values to
/// colour and opacity.
///
/// A transfer function keeps two lists of control points (opacity points
/// and colour points, positions and values from 0 to 1), bakes them into a
/// table texture, derives the prefix sum of opacity and the dependent table
/// from it, reads and writes the text file of control points, and supplies
/// the classification functions of the ray-casting shader.
///
/// The table follows the mode: 0 for 8-bit volumes (256 RGBA bytes, looked
/// up in one dimension), 1 for 16-bit volumes (65536 RGBA half floats as
/// 256 rows of 256, the row chosen by the high byte of the value).
///
/// The file is plain text, numbers separated by white space: the number of
/// opacity points, each as "position opacity", the number of colour
/// points, each as "position red green blue".
class Transferfunction
{
  public:
    /// Opacity control points: (position 0..1, opacity 0..1).
    typedef std::list<std::pair<float, float> >      AlphaPoints;
    /// Colour control points: (position 0..1, colour).
    typedef std::list<std::pair<float, FloatColor> > ColorPoints;

    /// The flag is not used. Opacity points (0, 0), (1, 1), colour points
    /// (0, black), (1, white), no table yet.
    explicit Transferfunction(bool unused = false);
    /// A copy carries nothing over: no tables, mode 0, no control points.
    Transferfunction(const Transferfunction &source);
    virtual ~Transferfunction(void);

    // --- the strategy ------------------------------------------------------------

    /// The classification text of the ray-casting shader: getClassification,
    /// applyCorrectionFactor and compositeColor.
    virtual std::string getFragmentShaderString(void) = 0;

    /// Adds the textures to the material and binds their uniforms, counting
    /// textureUnit up once for each texture added.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData) = 0;

    /// Reads a transfer-function file and builds the tables.
    virtual bool load(std::string fileName) = 0;

    /// Adopts a ready table.
    virtual bool setFunc(osg::TextureChunkPtr texture) = 0;

    /// Bakes the current control points into a new table for `mode`.
    virtual void createLinearTransfer(int mode) = 0;

    /// Makes sure a table that fits the mode exists.
    virtual void init(VolumeData *volumeData);

    // --- tables ----------------------------------------------------------------------

    /// The table: 256 RGBA texels for mode 0, 256 x 256 for mode 1.
    osg::TextureChunkPtr getTFTextureChunk(void) const { return _tfTexture; }
    /// The prefix sum of opacity ("summed area table").
    osg::TextureChunkPtr getSATextureChunk(void) const { return _saTexture; }
    /// The dependent table: the largest opacity over each range of values.
    osg::TextureChunkPtr getDTTextureChunk(void) const { return _dtTexture; }
    /// A checker texture for showing the table; NullFC unless a subclass
    /// makes one.
    osg::TextureChunkPtr getCheckerTC(void) const { return _checkerTC; }

    /// 0 for 8-bit, 1 for 16-bit volumes.
    osg::Int32 getMode(void) const { return _mode; }
    /// 0 for 8-bit, 1 for 16-bit volumes; takes effect at the next bake.
    void setMode(osg::Int32 mode) { _mode = mode; }

    /// What the last bakes were given.
    /// @{
    const AlphaPoints &getAlphaValues(void) const { return _alphaValues; }
    const ColorPoints &getColorValues(void) const { return _colorValues; }
    /// @}

    /// Adopts a ready table: sets its wrap, format and filters and holds
    /// it. False for a null chunk.
    bool setTransferfunc(osg::TextureChunkPtr texture);

    /// Writes the control points; false when the file can't be opened.
    bool save(std::string fileName);

    /// Reads the control points of a file and bakes them into a new table
    /// for the current mode. False, with a warning, when the file can't be
    /// opened or readControlPoints refuses it; a short or malformed file is
    /// not detected. The cost is linear in the file plus one bake.
    bool loadTransferfunction(std::string fileName);

    /// Bake a list into the opacity or the colour channels of an image made
    /// for the current mode, and keep a copy of it as the current list. An
    /// empty list leaves the channels as they are.
    /// @{
    void setAlphaValues(osg::ImagePtr &image, const AlphaPoints &points);
    void setColorValues(osg::ImagePtr &image, const ColorPoints &points);
    /// @}

    /// The running sum of the table's opacity, into the prefix-sum texture.
    bool calcSummedAreaTable(void);

    /// The largest opacity byte over every range of values, into the
    /// dependent texture; needs the prefix sum.
    bool calcDependTransferTextur(void);

    // --- the file format -----------------------------------------------------------

    /// Reads the control points from a stream, token by token; a count
    /// below 1 reads no points, and reading stops at the first token that
    /// isn't a number (the points read so far are kept). False, with a
    /// warning and both lists empty, when a number is not finite ("nan",
    /// "inf", or too large for a float or a count) or a list holds more
    /// than 65536 points.
    static bool readControlPoints(std::istream &is,
                                  AlphaPoints  &alphaPoints,
                                  ColorPoints  &colorPoints);

    /// Writes the control points, numbers with six significant digits.
    static void writeControlPoints(std::ostream      &os,
                                   const AlphaPoints &alphaPoints,
                                   const ColorPoints &colorPoints);

  protected:
    /// An RGBA table for `mode`: 256 x 1 bytes for 0, 256 x 256 halves
    /// otherwise. It comes with one reference, which the caller releases.
    static osg::ImagePtr createTableImage(int mode);

    /// Bakes the current lists into a new table for `mode` (with one
    /// reference, as createTableImage).
    osg::ImagePtr bakeCurrentPoints(int mode);

    /// Attaches image to the table texture, making the chunk first if
    /// needed, with clamped wraps, GL_RGBA16 and linear filters.
    void attachTable(osg::ImagePtr image);

    /// Marks the whole table texture dirty after a bake.
    void tableBaked(void);

    /// The table's image, NullFC without chunk or image.
    osg::ImagePtr getTableImage(void) const;

    /// compositeColor, the same in the text of every transfer function.
    static const char *const _compositeShader;

    /// The mode, the table and its two derived textures, the checker
    /// texture, and the control points of the last bakes (see the getters).
    /// @{
    osg::Int32           _mode;
    osg::TextureChunkPtr _tfTexture;
    osg::TextureChunkPtr _saTexture;
    osg::TextureChunkPtr _dtTexture;
    osg::TextureChunkPtr _checkerTC;
    AlphaPoints          _alphaValues;
    ColorPoints          _colorValues;
    /// @}

  private:
    Transferfunction &operator=(const Transferfunction &source);
};

#endif
