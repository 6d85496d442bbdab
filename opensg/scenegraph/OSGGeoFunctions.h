/// Functions that compute per-vertex data of a geometry.
#ifndef _OSGGEOFUNCTIONS_H_
#define _OSGGEOFUNCTIONS_H_

#include <OpenSG/OSGGeometry.h>

OSG_BEGIN_NAMESPACE

/// Smooth vertex normals: every position index gets the normalised sum of
/// the (area-weighted) normals of the triangles that use it. The normals are
/// indexed like the positions (a new GeoNormals3f replaces the old one).
void calcVertexNormals(GeometryPtr geo);

/// Vertex normals that stay smooth only across edges whose faces meet at
/// less than creaseAngle (radians): a vertex averages the triangles around
/// its position that lie within creaseAngle of the first triangle using it.
/// Indexed geometry gets a normal index of its own in every index tuple.
void calcVertexNormals(GeometryPtr geo, Real32 creaseAngle);

/// Per-vertex tangent space from the texture coordinates of unit
/// srcTexIndex. The tangent (xyz, handedness in w) goes to the texture
/// coordinate field with the Geometry field id dstAttribTan, the binormal to
/// dstAttribBin (-1: not stored); both are GeoTexCoords4f indexed like the
/// positions.
void calcVertexTangents(GeometryPtr geo,
                        Int32       srcTexIndex  = 0,
                        Int32       dstAttribTan = Geometry::TexCoords1FieldId,
                        Int32       dstAttribBin = Geometry::TexCoords2FieldId);

/// Counts what drawing the geometry emits: triangles (strips, fans, quads
/// and polygons counted as triangles), lines and points.
void calcPrimitiveCount(GeometryPtr geo, UInt32 &triangle, UInt32 &line, UInt32 &point);

OSG_END_NAMESPACE

#endif
