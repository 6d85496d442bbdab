#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>

OSG_BEGIN_NAMESPACE

MaterialDrawable::MaterialDrawable(void) : Inherited()
{
}

MaterialDrawable::MaterialDrawable(const MaterialDrawable &source) : Inherited(source)
{
}

// The material reference is not given back here: subclasses that count it
// (Geometry) release it when they are destroyed.
MaterialDrawable::~MaterialDrawable(void)
{
}

void MaterialDrawable::initMethod(void)
{
}

void MaterialDrawable::setMaterial(const MaterialPtr &value)
{
    if(_sfMaterial.getValue() == value)
        return;

    MaterialPtr old = _sfMaterial.getValue();
    subRefCP(old);
    _sfMaterial.setValue(value);
    addRefCP(value);
}

Action::ResultE MaterialDrawable::drawPrimitives(DrawActionBase *)
{
    FWARNING(("You should overload drawPrimitives in your code\n"));
    return Action::Continue;
}

Action::ResultE MaterialDrawable::renderActionEnterHandler(Action *action)
{
    RenderAction *a = dynamic_cast<RenderAction *>(action);
    if(a == NULL)
        return Action::Continue;

    Material::DrawFunctor func =
        osgTypedMethodFunctor1ObjPtr(this, &MaterialDrawable::drawPrimitives);

    Material *m = a->getMaterial();
    if(m == NULL)
    {
        if(getMaterial() != NullFC)
        {
            m = getMaterial().getCPtr();
        }
        else
        {
            m = getDefaultMaterial().getCPtr();
            FNOTICE(("MaterialDrawable::render: no Material!?!\n"));
        }
    }

    a->dropFunctor(func, m);

    if(a->pushVisibility())
    {
        if(a->selectVisibles() == 0)
        {
            a->popVisibility();
            return Action::Skip;
        }
    }
    return Action::Continue;
}

Action::ResultE MaterialDrawable::renderActionLeaveHandler(Action *action)
{
    RenderAction *a = dynamic_cast<RenderAction *>(action);
    if(a != NULL)
        a->popVisibility();
    return Action::Continue;
}

Action::ResultE MaterialDrawable::drawActionEnterHandler(Action *action)
{
    DrawAction *a = dynamic_cast<DrawAction *>(action);
    if(a == NULL)
        return Action::Continue;

    Material::DrawFunctor func =
        osgTypedMethodFunctor1ObjPtr(this, &MaterialDrawable::drawPrimitives);

    Material *m = a->getMaterial();
    if(m == NULL)
    {
        if(getMaterial() != NullFC)
        {
            m = getMaterial().getCPtr();
        }
        else
        {
            m = getDefaultMaterial().getCPtr();
            FWARNING(("MaterialDrawable::draw:: no material!\n"));
        }
    }

    if(m != NULL)
        m->draw(func, a);

    return a->selectVisibles() == 0 ? Action::Skip : Action::Continue;
}

Action::ResultE MaterialDrawable::drawActionLeaveHandler(Action *)
{
    return Action::Continue;
}

void MaterialDrawable::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MaterialDrawable::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MaterialDrawable NI" << std::endl;
}

OSG_END_NAMESPACE
