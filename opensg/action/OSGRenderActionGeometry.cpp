// RenderAction::dropGeometry lives apart so that the render action itself
// does not depend on the geometry classes.
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterial.h>

OSG_BEGIN_NAMESPACE

void RenderAction::dropGeometry(Geometry *geo)
{
    if(geo == NULL)
        return;

    DrawFunctor func = osgTypedMethodFunctor1ObjPtr(geo, &Geometry::drawPrimitives);
    dropFunctor(func, geo->getMaterial().getCPtr());
}

OSG_END_NAMESPACE
