#include <OpenSG/OSGDrawable.h>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> Drawable::statNTriangles("NTriangles",
                                                   "number of rendered triangles");
StatElemDesc<StatIntElem> Drawable::statNLines("NLines", "number of rendered lines");
StatElemDesc<StatIntElem> Drawable::statNPoints("NPoints", "number of rendered points");
StatElemDesc<StatIntElem> Drawable::statNVertices("NVertices",
                                                  "number of transformed vertices");
StatElemDesc<StatIntElem> Drawable::statNPrimitives("NPrimitives",
                                                    "number of rendered primitive groups");
StatElemDesc<StatIntOnceElem> Drawable::statNGeoBytes(
    "NGeoBytes", "memory usage of geometry on the graphics card");

Drawable::Drawable(void) : Inherited()
{
}

Drawable::Drawable(const Drawable &source) : Inherited(source)
{
}

Drawable::~Drawable(void)
{
}

void Drawable::initMethod(void)
{
}

void Drawable::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Drawable::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Drawable NI" << std::endl;
}

OSG_END_NAMESPACE
