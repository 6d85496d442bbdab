/// Ready-made shapes and the default materials.
///
/// Every maker returns a new, unreferenced geometry (or a node holding one)
/// with positions, normals, 2D texture coordinates and single indices (the
/// icosahedral sphere: a position/normal and a texture index per vertex),
/// and the default material; NullFC and a warning for illegal parameters or
/// for more than 2^23 vertices. Triangles face outwards (counter-clockwise).
#ifndef _OSGSIMPLEGEOMETRY_H_
#define _OSGSIMPLEGEOMETRY_H_

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGMaterialFields.h>

OSG_BEGIN_NAMESPACE

/// A process-wide lit SimpleMaterial (diffuse (0.7, 0.7, 0.5), ambient 0.1,
/// specular 1, shininess 20), made on first use and never freed.
MaterialPtr getDefaultMaterial(void);
/// A process-wide unlit SimpleMaterial with diffuse (1, 1, 0.5).
MaterialPtr getDefaultUnlitMaterial(void);

/// A plane in the xy plane, centred on the origin, facing +z, split into
/// hor x vert quads: one triangle strip per row.
GeometryPtr makePlaneGeo(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert);
NodePtr     makePlane(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert);

/// An axis-aligned box centred on the origin; each face is split into
/// quads (hor along x, vert along y, depth along z), one strip per row.
GeometryPtr makeBoxGeo(Real32 xsize, Real32 ysize, Real32 zsize,
                       UInt16 hor, UInt16 vert, UInt16 depth);
NodePtr     makeBox(Real32 xsize, Real32 ysize, Real32 zsize,
                    UInt16 hor, UInt16 vert, UInt16 depth);

/// A sphere made by subdividing an icosahedron depth times (depth 0: 20
/// triangles, each split makes its own edge midpoints); texture coordinates
/// are longitude/latitude with s = 0 at -z, and the triangles along that
/// seam get texture coordinates of their own.
GeometryPtr makeSphereGeo(UInt16 depth, Real32 radius);
NodePtr     makeSphere(UInt16 depth, Real32 radius);

/// A sphere of latres latitude rows (south pole first) and longres
/// longitude columns starting at -z (both at least 4); one triangle strip
/// per column.
GeometryPtr makeLatLongSphereGeo(UInt16 latres, UInt16 longres, Real32 radius);
NodePtr     makeLatLongSphere(UInt16 latres, UInt16 longres, Real32 radius);

/// A torus around the z axis: the tube (radius innerRadius, sides
/// segments) runs clockwise around a circle of radius outerRadius (rings
/// segments); one triangle strip per tube segment, texture s from 0 to -1.
GeometryPtr makeTorusGeo(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings);
NodePtr     makeTorus(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings);

/// A cone frustum around the y axis, centred on the origin (from -height/2
/// to +height/2), with an optional side (one strip, starting at -z; its
/// normals have length 1 + incl^2 for the slope incl) and optional top and
/// bottom caps (polygons).
GeometryPtr makeConicalFrustumGeo(Real32 height, Real32 topradius, Real32 botradius,
                                  UInt16 sides, bool doSide, bool doTop, bool doBottom);
NodePtr     makeConicalFrustum(Real32 height, Real32 topradius, Real32 botradius,
                               UInt16 sides, bool doSide, bool doTop, bool doBottom);

GeometryPtr makeConeGeo(Real32 height, Real32 botradius, UInt16 sides,
                        bool doSide, bool doBottom);
NodePtr     makeCone(Real32 height, Real32 botradius, UInt16 sides,
                     bool doSide, bool doBottom);

GeometryPtr makeCylinderGeo(Real32 height, Real32 radius, UInt16 sides,
                            bool doSide, bool doTop, bool doBottom);
NodePtr     makeCylinder(Real32 height, Real32 radius, UInt16 sides,
                         bool doSide, bool doTop, bool doBottom);

OSG_END_NAMESPACE

#endif
