/// The arithmetic of transfer-function tables on plain buffers: baking
/// control points into an RGBA table, the prefix sum of opacity, the table
/// of largest opacities over value ranges, and the two pre-integration
/// tables. The texture-chunk classes feed these from their images; keeping
/// them apart lets them be measured and checked without GL.
///
/// Tables are RGBA, either four bytes a texel (the 8-bit table of 256
/// texels) or four half floats a texel (the 16-bit table of 65536 texels).
/// Every function reads and writes only inside the byte counts it is
/// given: a texel beyond the buffer reads as 0 and is not written.
#ifndef _TRANSFERTABLES_H_
#define _TRANSFERTABLES_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/FloatColor.h>

#include <list>
#include <utility>

class TransferTables
{
  public:
    /// As Transferfunction::AlphaPoints.
    typedef std::list<std::pair<float, float> >      AlphaPoints;
    /// As Transferfunction::ColorPoints.
    typedef std::list<std::pair<float, FloatColor> > ColorPoints;

    /// Bakes opacity points into the fourth channel of the first `texels`
    /// texels, linearly between points; bytes store trunc(255 * value),
    /// halves the value itself. A list that ends before the last texel
    /// (its last index below 256 for bytes, 65536 for halves) flattens the
    /// whole channel to its last opacity. An empty list writes nothing.
    /// The result is that of walking the segments in list order, later
    /// ones overwriting earlier ones, but each texel is written once: the
    /// cost is linear in the table and the list, whatever the points do.
    static void bakeAlpha(osg::UInt8        *table,
                          osg::UInt64        tableBytes,
                          bool               halves,
                          osg::UInt32        texels,
                          const AlphaPoints &points);

    /// The same for the three colour channels; a list that ends early only
    /// continues its last colour up to texel 255 (bytes) or 65535 (halves).
    static void bakeColor(osg::UInt8        *table,
                          osg::UInt64        tableBytes,
                          bool               halves,
                          osg::UInt32        texels,
                          const ColorPoints &points);

    /// sum[k] = opacity of texels 0 to k, the opacity of a byte table taken
    /// as 0 to 255, that of a half table as 0 to 1.
    /// @{
    static void prefixSumBytes(const osg::UInt8 *table,
                               osg::UInt64       tableBytes,
                               osg::UInt32       texels,
                               osg::Real32      *sum);
    static void prefixSumHalves(const osg::UInt8 *table,
                                osg::UInt64       tableBytes,
                                osg::UInt32       texels,
                                osg::Real32      *sum);
    /// @}

    /// out[y * n + x] = the largest opacity byte of texels x to y for
    /// x <= y, 0 above the diagonal. The table is read as four bytes a
    /// texel. Linear in the size of the result.
    static void maxOpacityTable(const osg::UInt8 *table,
                                osg::UInt64       tableBytes,
                                osg::UInt32       n,
                                osg::UInt8       *out);

    /// The 8-bit pre-integration table: the premultiplied average of the
    /// first 256 texels of a byte table over every pair of values (a, b),
    /// as RGBA halves at texel b * 256 + a, through running integrals.
    static void preIntegrateBytes(const osg::UInt8 *table,
                                  osg::UInt64       tableBytes,
                                  osg::UInt8       *out,
                                  osg::UInt64       outBytes);

    /// The 16-bit integral table: 65536 RGBA floats, entry i the
    /// premultiplied integral of a half table from texel 0 to texel i by
    /// the trapezoid rule (entry 0 is zero).
    static void integrateHalves(const osg::UInt8 *table,
                                osg::UInt64       tableBytes,
                                osg::Real32      *out);

    /// The index of a control point: trunc(position * texels), kept inside
    /// a range where it is defined and cheap to walk to.
    static osg::Int32 texelIndex(float position, osg::UInt32 texels);

    /// trunc(255 * value) as a byte, values outside 0..1 clamped.
    static osg::UInt8 toByte(float value);

    /// What `count` additions of step to 0.f give in float arithmetic, bit
    /// for bit, in time logarithmic in count: where a ramp's walk over the
    /// texels has its t at any texel.
    static float accumulated(float step, osg::UInt64 count);
};

#endif
