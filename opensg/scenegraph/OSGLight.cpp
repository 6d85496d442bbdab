#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// GL has eight fixed-function lights; a deeper draw-action light stack
/// counts on but lights nothing.
const UInt32 MaxGLLights = 8;

} // namespace

Light::Light(void) : Inherited(), _pChunk()
{
}

Light::Light(const Light &source) : Inherited(source), _pChunk()
{
}

Light::~Light(void)
{
}

void Light::initMethod(void)
{
}

void Light::onCreate(const Light *source)
{
    // a copy shares the source's beacon: one more holder
    if(source != NULL)
        addRefCP(_sfBeacon.getValue());
}

void Light::onDestroy(void)
{
    NodePtr beacon = _sfBeacon.getValue();
    _sfBeacon.setValue(NullFC);
    subRefCP(beacon);

    LightChunkPtr chunk = _pChunk;
    _pChunk             = NullFC;
    subRefCP(chunk);

    Inherited::onDestroy();
}

void Light::setBeacon(const NodePtr &beacon)
{
    NodePtr old = _sfBeacon.getValue();

    addRefCP(beacon);
    _sfBeacon.setValue(beacon);
    subRefCP(old);
}

void Light::makeChunk(void)
{
    if(_pChunk == NullFC)
    {
        _pChunk = LightChunk::create();
        addRefCP(_pChunk);
    }

    _pChunk->setAmbient(getAmbient());
    _pChunk->setDiffuse(getDiffuse());
    _pChunk->setSpecular(getSpecular());
}

void Light::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & BeaconFieldMask) && (origin & ChangedOrigin::Abstract))
    {
        if(origin & ChangedOrigin::AbstrIncRefCount)
        {
            addRefCP(_sfBeacon.getValue());
        }
        else
        {
            NodePtr beacon = _sfBeacon.getValue();
            _sfBeacon.setValue(NullFC);
            setBeacon(beacon);
        }
    }

    Inherited::changed(whichField, origin);
}

void Light::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    SLOG << "Dump Light NI" << std::endl;
}

// --- actions -----------------------------------------------------------------------------

Action::ResultE Light::drawEnter(Action *action)
{
    if(!getOn())
        return Action::Continue;

    DrawAction *da = dynamic_cast<DrawAction *>(action);
    if(da == NULL)
        return Action::Continue;

    makeChunk();

    UInt32 index = da->getLightCount();
    da->incLightCount();

    if(index >= MaxGLLights)
    {
        SWARNING << "Light::drawEnter: maximum light source limit is " << MaxGLLights << "!"
                 << std::endl;
        return Action::Continue;
    }

    // The GL matrix is the one of this node; the light sits in its beacon's
    // system: node-to-world inverse times beacon-to-world.
    glPushMatrix();

    NodePtr beacon = getBeacon();
    if(beacon == NullFC)
    {
        SINFO << "draw: no beacon set!" << std::endl;
    }
    else
    {
        Matrix fromWorld;
        action->getActNode()->getToWorld(fromWorld);
        fromWorld.invert();

        Matrix toBeacon;
        beacon->getToWorld(toBeacon);
        fromWorld.mult(toBeacon);

        glMultMatrixf(fromWorld.getValues());
    }

    _pChunk->activate(da, index);

    glPopMatrix();

    return Action::Continue;
}

Action::ResultE Light::drawLeave(Action *action)
{
    if(!getOn())
        return Action::Continue;

    DrawAction *da = dynamic_cast<DrawAction *>(action);
    if(da == NULL)
        return Action::Continue;

    da->decLightCount();

    UInt32 index = da->getLightCount();
    if(index < MaxGLLights && _pChunk != NullFC)
        _pChunk->deactivate(da, index);

    return Action::Continue;
}

Action::ResultE Light::renderEnter(Action *action)
{
    if(!getOn())
        return Action::Continue;

    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    // A culled light still lights the scene unless lights are local to
    // their subtree.
    if(ra->pushVisibility())
    {
        if(!ra->underLightEnv() && ra->selectVisibles() == 0 && ra->getLocalLights())
        {
            ra->popVisibility();
            return Action::Skip;
        }
    }

    ra->dropLight(this);

    return Action::Continue;
}

Action::ResultE Light::renderLeave(Action *action)
{
    if(!getOn())
        return Action::Continue;

    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    ra->undropLight(this);
    ra->popVisibility();

    return Action::Continue;
}

OSG_END_NAMESPACE
