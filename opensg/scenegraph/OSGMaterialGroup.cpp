#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

MaterialGroup::MaterialGroup(void) : Inherited()
{
}

MaterialGroup::MaterialGroup(const MaterialGroup &source) : Inherited(source)
{
}

MaterialGroup::~MaterialGroup(void)
{
}

void MaterialGroup::initMethod(void)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, MaterialGroupPtr, CNodePtr, Action *>(
            &MaterialGroup::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, MaterialGroupPtr, CNodePtr, Action *>(
            &MaterialGroup::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, MaterialGroupPtr, CNodePtr, Action *>(
            &MaterialGroup::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, MaterialGroupPtr, CNodePtr, Action *>(
            &MaterialGroup::renderLeave));
}

void MaterialGroup::onCreate(const MaterialGroup *source)
{
    // a copy shares the source's material: one more holder
    if(source != NULL)
        addRefCP(_sfMaterial.getValue());
}

void MaterialGroup::onDestroy(void)
{
    MaterialPtr mat = _sfMaterial.getValue();
    _sfMaterial.setValue(NullFC);
    subRefCP(mat);

    Inherited::onDestroy();
}

void MaterialGroup::setMaterial(const MaterialPtr &value)
{
    MaterialPtr old = _sfMaterial.getValue();

    addRefCP(value);
    _sfMaterial.setValue(value);
    subRefCP(old);
}

void MaterialGroup::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & MaterialFieldMask) && (origin & ChangedOrigin::Abstract))
    {
        if(origin & ChangedOrigin::AbstrIncRefCount)
        {
            addRefCP(_sfMaterial.getValue());
        }
        else
        {
            // the field was filled without counting: count it now
            MaterialPtr mat = _sfMaterial.getValue();
            _sfMaterial.setValue(NullFC);
            setMaterial(mat);
        }
    }

    Inherited::changed(whichField, origin);
}

void MaterialGroup::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Inherited::dump(uiIndent, bvFlags);
}

// --- actions -------------------------------------------------------------------------

Action::ResultE MaterialGroup::drawEnter(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da == NULL)
        return Action::Continue;

    if(getMaterial() != NullFC && da->getMaterial() == NULL)
        da->setMaterial(getMaterial().getCPtr(), action->getActNode());

    // no Skip: the leave functor must take the material back
    da->selectVisibles();
    return Action::Continue;
}

Action::ResultE MaterialGroup::drawLeave(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da != NULL && da->getMaterialNode() == action->getActNode())
        da->setMaterial(NULL, NullFC);

    return Action::Continue;
}

Action::ResultE MaterialGroup::renderEnter(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    Action::ResultE r = Group::renderEnter(action);
    if(r == Action::Skip)
        return r;

    // the outermost material group wins
    if(getMaterial() != NullFC && ra->getMaterial() == NULL)
        ra->setMaterial(getMaterial().getCPtr(), action->getActNode());

    return r;
}

Action::ResultE MaterialGroup::renderLeave(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    if(ra->getMaterialNode() == action->getActNode())
        ra->setMaterial(NULL, NullFC);

    return Group::renderLeave(action);
}

OSG_END_NAMESPACE
