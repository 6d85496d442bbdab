/// Functions that compute per-vertex data of a geometry.
#ifndef _OSGGEOFUNCTIONS_H_
#define _OSGGEOFUNCTIONS_H_

#include <OpenSG/OSGGeometry.h>

OSG_BEGIN_NAMESPACE

/// Smooth vertex normals: every position index gets the normalised sum of
/// the unit normals of the triangles that use it, each face counted once.
/// The geometry's normals property is reused (a GeoNormals3f is made if it
/// has none); shared with another geometry, only the entries this one uses
/// change. Afterwards the normals follow the position index.
void calcVertexNormals(GeometryPtr geo);

/// Vertex normals that stay smooth only across edges whose faces meet at
/// less than creaseAngle (radians): a vertex gets the normalised sum of the
/// distinct face normals around its position that lie within creaseAngle
/// of the first triangle using it (creaseAngle >= Pi: calcVertexNormals(geo)).
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

/// Flat normals: one normal per face (FaceIterator), the normalised cross
/// product of the edges (of the diagonals for a quad). Indexed geometry gets
/// a normal index column that points each vertex at its last face's normal;
/// non-indexed geometry gets one normal per vertex.
void calcFaceNormals(GeometryPtr geo);

/// A node with a line geometry that shows the vertex normals: a line from
/// every vertex along its normal, length long. NullFC without positions or
/// normals.
NodePtr calcVertexNormalsGeo(GeometryPtr geo, Real32 length);

/// The same for the face normals, from each face's centre.
NodePtr calcFaceNormalsGeo(GeometryPtr geo, Real32 length);

/// Makes equal attribute values share one index: every index that points at
/// a value equal to an earlier one is changed to the earlier one (a
/// non-indexed geometry gets indices first). Returns the number of indices
/// changed, -1 for a geometry without positions.
Int32 createSharedIndex(GeometryPtr geo);

/// Rewrites the polygonal primitives (triangles, strips, fans, quads,
/// polygons) as one indexed GL_TRIANGLES primitive after the points and
/// lines, which stay as they are. The further arguments steer OpenSG's
/// strip builder and are accepted for compatibility. Returns the number of
/// vertices the geometry then sends, -1 for a geometry without positions.
Int32 createOptimizedPrimitives(GeometryPtr geo,
                                UInt32      iteration       = 1,
                                bool        createStrips    = true,
                                bool        createFans      = true,
                                UInt32      minFanEdgeCount = 8,
                                bool        colorCode       = false,
                                bool        stitchStrips    = false);

/// Counts what drawing the geometry emits: triangles (strips, fans, quads
/// and polygons counted as triangles), lines and points.
void calcPrimitiveCount(GeometryPtr geo, UInt32 &triangle, UInt32 &line, UInt32 &point);

OSG_END_NAMESPACE

#endif
