#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// The line in the system reached through m; s receives the length the
/// unit direction gets there (the factor distances change by).
Line transformLine(const Matrix &m, const Line &line, Real32 &s)
{
    Pnt3f pos;
    Vec3f dir;
    m.multFull(line.getPosition(), pos);
    m.mult(line.getDirection(), dir);
    s = dir.length();
    return Line(pos, dir);
}

} // namespace

Transform::Transform(void) : Inherited()
{
}

Transform::Transform(const Transform &source) : Inherited(source)
{
}

Transform::~Transform(void)
{
}

void Transform::initMethod(void)
{
    registerFunctors(getClassType());
}

void Transform::registerFunctors(const FieldContainerType &type)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::drawEnter));
    DrawAction::registerLeaveDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::drawLeave));

    RenderAction::registerEnterDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::renderEnter));
    RenderAction::registerLeaveDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::renderLeave));

    IntersectAction::registerEnterDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::intersectEnter));
    IntersectAction::registerLeaveDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::intersectLeave));

    IntersectActor::regClassEnter(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, TransformPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(&Transform::intersectActorEnter),
        type);
    IntersectActor::regClassLeave(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, TransformPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(&Transform::intersectActorLeave),
        type);
}

void Transform::accumulateMatrix(Matrix &result)
{
    result.mult(getMatrix());
}

void Transform::adjustVolume(Volume &volume)
{
    volume.transform(getMatrix());
}

void Transform::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & MatrixFieldMask)
        invalidateVolume();

    Inherited::changed(whichField, origin);
}

void Transform::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    SLOG << "Dump Transform NI" << std::endl;
}

// --- actions -------------------------------------------------------------------------

Action::ResultE Transform::drawEnter(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);

    glPushMatrix();
    glMultMatrixf(getMatrix().getValues());

    if(da != NULL)
        da->selectVisibles();

    return Action::Continue;
}

Action::ResultE Transform::drawLeave(Action *)
{
    glPopMatrix();
    return Action::Continue;
}

Action::ResultE Transform::renderEnter(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    // A culled node already has an empty node list: nothing below is drawn.
    ra->pushVisibility();
    ra->push_matrix(getMatrix());

    return Action::Continue;
}

Action::ResultE Transform::renderLeave(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    ra->popVisibility();
    ra->pop_matrix();

    return Action::Continue;
}

Action::ResultE Transform::intersectEnter(Action *action)
{
    if(Group::intersect(action) == Action::Skip)
        return Action::Skip;

    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    Matrix m(getMatrix());
    m.invert();

    Real32 s;
    Line   line = transformLine(m, ia->getLine(), s);

    ia->setLine(line, ia->getMaxDist());
    ia->scale(s);

    return Action::Continue;
}

Action::ResultE Transform::intersectLeave(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    Real32 s;
    Line   line = transformLine(getMatrix(), ia->getLine(), s);

    ia->setLine(line, ia->getMaxDist());
    ia->scale(s);

    return Action::Continue;
}

NewActionTypes::ResultE Transform::intersectActorEnter(ActorBase::FunctorArgumentType &funcArg)
{
    IntersectActor *actor = dynamic_cast<IntersectActor *>(funcArg.getActor());
    if(actor == NULL)
        return NewActionTypes::Continue;

    Matrix m(getMatrix());
    m.invert();

    Real32 s;
    Line   ray = transformLine(m, actor->getRay(), s);

    actor->beginEditState();
    actor->setRay(ray);
    actor->setScaleFactor(s != 0.f ? actor->getScaleFactor() / s : actor->getScaleFactor());
    actor->endEditState();

    actor->setupChildrenPriorities();

    return NewActionTypes::Continue;
}

NewActionTypes::ResultE Transform::intersectActorLeave(ActorBase::FunctorArgumentType &funcArg)
{
    IntersectActor *actor = dynamic_cast<IntersectActor *>(funcArg.getActor());
    if(actor == NULL)
        return NewActionTypes::Continue;

    Real32 s;
    Line   ray = transformLine(getMatrix(), actor->getRay(), s);

    actor->beginEditState();
    actor->setRay(ray);
    actor->setScaleFactor(s != 0.f ? actor->getScaleFactor() / s : actor->getScaleFactor());
    actor->endEditState();

    return NewActionTypes::Continue;
}

OSG_END_NAMESPACE
