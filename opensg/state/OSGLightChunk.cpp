#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass LightChunk::_class("Light", 8);

LightChunk::LightChunk(void) : Inherited()
{
}

LightChunk::LightChunk(const LightChunk &source) : Inherited(source)
{
}

LightChunk::~LightChunk(void)
{
}

void LightChunk::initMethod(void)
{
}

const StateChunkClass *LightChunk::getClass(void) const
{
    return &_class;
}

void LightChunk::activate(DrawActionBase *, UInt32 index)
{
    GLenum light = GL_LIGHT0 + index;

    glLightfv(light, GL_DIFFUSE, getDiffuse().getValuesRGBA());
    glLightfv(light, GL_AMBIENT, getAmbient().getValuesRGBA());
    glLightfv(light, GL_SPECULAR, getSpecular().getValuesRGBA());
    // transformed by the current model-view matrix, i.e. the light's space
    glLightfv(light, GL_POSITION, getPosition().getValues());

    glLightf(light, GL_CONSTANT_ATTENUATION, getConstantAttenuation());
    glLightf(light, GL_LINEAR_ATTENUATION, getLinearAttenuation());
    glLightf(light, GL_QUADRATIC_ATTENUATION, getQuadraticAttenuation());

    glLightf(light, GL_SPOT_CUTOFF, getCutoff());
    if(getCutoff() < 180.f)
    {
        glLightfv(light, GL_SPOT_DIRECTION, getDirection().getValues());
        glLightf(light, GL_SPOT_EXPONENT, getExponent());
    }

    glEnable(light);
}

void LightChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    // activation sets every parameter of the light and enables it, which is
    // all a switch needs; the position must be re-applied anyway because
    // the model-view matrix may have changed
    if(dynamic_cast<LightChunk *>(old) == NULL)
        old->deactivate(action, index);
    activate(action, index);
}

void LightChunk::deactivate(DrawActionBase *, UInt32 index)
{
    glDisable(GL_LIGHT0 + index);
}

bool LightChunk::isTransparent(void) const
{
    return false;
}

Real32 LightChunk::switchCost(StateChunk *)
{
    return 0;
}

bool LightChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool LightChunk::operator==(const StateChunk &other) const
{
    const LightChunk *tother = dynamic_cast<const LightChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;

    return getDiffuse().equals(tother->getDiffuse(), 1e-6f) &&
           getAmbient().equals(tother->getAmbient(), 1e-6f) &&
           getSpecular().equals(tother->getSpecular(), 1e-6f) &&
           getPosition().equals(tother->getPosition(), 1e-6f) &&
           getDirection().equals(tother->getDirection(), 1e-6f) &&
           getExponent() == tother->getExponent() && getCutoff() == tother->getCutoff() &&
           getConstantAttenuation() == tother->getConstantAttenuation() &&
           getLinearAttenuation() == tother->getLinearAttenuation() &&
           getQuadraticAttenuation() == tother->getQuadraticAttenuation();
}

bool LightChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void LightChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void LightChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump LightChunk NI" << std::endl;
}

OSG_END_NAMESPACE
