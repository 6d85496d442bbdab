#include "OSGActionTestCore.h"

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

std::vector<std::string> &actionTestLog(void)
{
    static std::vector<std::string> log;
    return log;
}

std::vector<ActionTestDraw> &actionTestDraws(void)
{
    static std::vector<ActionTestDraw> draws;
    return draws;
}

bool &actionTestQuiet(void)
{
    static bool quiet = false;
    return quiet;
}

void actionTestRecord(const std::string &entry)
{
    if(!actionTestQuiet())
        actionTestLog().push_back(entry);
}

void clearActionTestLog(void)
{
    actionTestLog().clear();
    actionTestDraws().clear();
}

std::string actionTestLogString(void)
{
    std::string s;
    for(const std::string &e : actionTestLog())
    {
        if(!s.empty())
            s += ' ';
        s += e;
    }
    return s;
}

ActionTestCore::ActionTestCore(void) : Inherited(), _enterCount(0)
{
}

ActionTestCore::ActionTestCore(const ActionTestCore &source) : Inherited(source), _enterCount(0)
{
}

ActionTestCore::~ActionTestCore(void)
{
}

void ActionTestCore::initMethod(void)
{
    typedef Action::ResultE R;
    typedef ActionTestCorePtr P;

    Action::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::enter));
    Action::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::leave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::renderLeave));

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::drawEnter));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&ActionTestCore::intersect));
}

void ActionTestCore::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ActionTestCore::adjustVolume(Volume &volume)
{
    volume.setValid();
    volume.extendBy(BoxVolume(-0.5f, -0.5f, -0.5f, 0.5f, 0.5f, 0.5f));
}

Action::ResultE ActionTestCore::enter(Action *action)
{
    ++_enterCount;
    actionTestRecord("E:" + getLabel());

    if(getUseList())
        action->useNodeList();
    for(UInt32 i = 0; i < getPick().size(); ++i)
        action->addNode(action->getNode(getPick()[i]));

    return Action::ResultE(getEnterResult());
}

Action::ResultE ActionTestCore::leave(Action *action)
{
    actionTestRecord("L:" + getLabel());
    return Action::ResultE(getLeaveResult());
}

Action::ResultE ActionTestCore::renderEnter(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);

    if(!actionTestQuiet())
        actionTestRecord("RE:" + getLabel());

    Material *mat = ra->getMaterial() != NULL ? ra->getMaterial() : getMaterial().getCPtr();
    if(mat != NULL)
    {
        RenderAction::DrawFunctor func = osgTypedMethodFunctor1ObjPtr(this, &ActionTestCore::draw);
        ra->dropFunctor(func, mat);
    }
    return Action::ResultE(getEnterResult());
}

Action::ResultE ActionTestCore::renderLeave(Action *action)
{
    if(!actionTestQuiet())
        actionTestRecord("RL:" + getLabel());
    return Action::Continue;
}

Action::ResultE ActionTestCore::drawEnter(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);

    Material *mat = da->getMaterial() != NULL ? da->getMaterial() : getMaterial().getCPtr();
    if(mat != NULL)
    {
        Material::DrawFunctor func = osgTypedMethodFunctor1ObjPtr(this, &ActionTestCore::draw);
        mat->draw(func, da);
    }
    return Action::Continue;
}

Action::ResultE ActionTestCore::intersect(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);

    if(!actionTestQuiet())
        actionTestRecord("I:" + getLabel());

    const Pnt3f v[4] = {Pnt3f(-0.5f, -0.5f, 0.f), Pnt3f(0.5f, -0.5f, 0.f),
                        Pnt3f(0.5f, 0.5f, 0.f), Pnt3f(-0.5f, 0.5f, 0.f)};
    const int tris[2][3] = {{0, 1, 2}, {0, 2, 3}};

    for(Int32 t = 0; t < 2; ++t)
    {
        Real32 dist;
        Vec3f  normal;
        if(ia->getLine().intersect(v[tris[t][0]], v[tris[t][1]], v[tris[t][2]], dist, &normal))
            ia->setHit(dist, action->getActNode(), t, normal);
    }
    return Action::Continue;
}

Action::ResultE ActionTestCore::draw(DrawActionBase *action)
{
    if(actionTestQuiet())
        return Action::Continue;

    actionTestRecord("D:" + getLabel());

    if(getQuad())
    {
        glBegin(GL_QUADS);
        glNormal3f(0.f, 0.f, 1.f);
        glVertex3f(-0.5f, -0.5f, 0.f);
        glVertex3f(0.5f, -0.5f, 0.f);
        glVertex3f(0.5f, 0.5f, 0.f);
        glVertex3f(-0.5f, 0.5f, 0.f);
        glEnd();
    }

    ActionTestDraw d;
    d.label   = getLabel();
    d.actNode = action->getActNode();

    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    d.topMatrix  = ra != NULL ? ra->top_matrix() : Matrix();
    d.lightsMask = ra != NULL ? ra->getActiveLightsMask() : 0;

    glGetFloatv(GL_MODELVIEW_MATRIX, d.glModelView.getValues());
    GLboolean depthWrite = GL_TRUE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrite);
    d.depthWrite = depthWrite == GL_TRUE;
    d.glLightsOn = 0;
    for(UInt32 i = 0; i < 8; ++i)
    {
        if(glIsEnabled(GL_LIGHT0 + i))
            d.glLightsOn |= 1u << i;
    }

    actionTestDraws().push_back(d);
    return Action::Continue;
}

OSG_END_NAMESPACE
