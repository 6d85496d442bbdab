/// Union and intersection tests between volumes of mixed types.
#ifndef _OSGVOLUMEFUNCTIONS_H_
#define _OSGVOLUMEFUNCTIONS_H_

#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

class BoxVolume;
class SphereVolume;

/// dst grows to contain src. Nothing happens when dst is invalid and not
/// empty, infinite or static, or when src is invalid. An empty dst becomes
/// src; an empty src changes nothing; an infinite src makes dst infinite.
void extend(BoxVolume &dst, const BoxVolume &src);
/// The same rules, on the sphere's bounding box.
void extend(BoxVolume &dst, const SphereVolume &src);
/// A DynamicVolume counts as its instance; a box goes to extend(box, box);
/// any other volume goes in as a box of its bounds, valid and non-empty
/// whatever its own state.
void extend(BoxVolume &dst, const Volume &src);

/// As for boxes; the union is the sphere around the combined bounding box.
void extend(SphereVolume &dst, const SphereVolume &src);
/// The box goes in as the sphere around it.
void extend(SphereVolume &dst, const BoxVolume &src);
/// Dispatches like extend(BoxVolume&, const Volume&).
void extend(SphereVolume &dst, const Volume &src);

/// Overlap tests (touching counts); empty volumes never intersect, infinite
/// ones always do.
bool intersect(const BoxVolume &a, const BoxVolume &b);
bool intersect(const BoxVolume &a, const SphereVolume &b);
bool intersect(const SphereVolume &a, const BoxVolume &b);
bool intersect(const SphereVolume &a, const SphereVolume &b);
/// By dynamic type; unknown volumes are compared by their bounding boxes.
bool intersect(const Volume &a, const Volume &b);

OSG_END_NAMESPACE

#endif
