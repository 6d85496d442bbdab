#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGGL.h>

#include <cmath>

OSG_BEGIN_NAMESPACE

StateChunkClass MaterialChunk::_class("Material", 1);

namespace
{
/// The faces glColorMaterial works on, and the mode; GL_NONE for no
/// colour material.
void colorMaterialSetup(const MaterialChunk *chunk, GLenum &face, GLenum &mode)
{
    GLenum front = chunk->getColorMaterial();
    if(!chunk->getBackMaterial())
    {
        face = GL_FRONT_AND_BACK;
        mode = front;
        return;
    }

    GLenum back = chunk->getBackColorMaterial();
    if(front == GL_NONE && back == GL_NONE)
    {
        face = GL_FRONT_AND_BACK;
        mode = GL_NONE;
    }
    else if(back == GL_NONE)
    {
        face = GL_FRONT;
        mode = front;
    }
    else if(front == GL_NONE)
    {
        face = GL_BACK;
        mode = back;
    }
    else
    {
        if(front != back)
            FWARNING(("MaterialChunk::activate: can't have different back and front "
                      "colorMaterial types!\n"));
        face = GL_FRONT_AND_BACK;
        mode = front;
    }
}

void applyColorMaterial(GLenum face, GLenum mode)
{
    if(mode == GL_NONE)
    {
        glDisable(GL_COLOR_MATERIAL);
    }
    else
    {
        glColorMaterial(face, mode);
        glEnable(GL_COLOR_MATERIAL);
    }
}

void applyMaterial(const MaterialChunk *chunk, bool withShininess)
{
    GLenum face = chunk->getBackMaterial() ? GL_FRONT : GL_FRONT_AND_BACK;

    glMaterialfv(face, GL_DIFFUSE, chunk->getDiffuse().getValuesRGBA());
    glMaterialfv(face, GL_AMBIENT, chunk->getAmbient().getValuesRGBA());
    glMaterialfv(face, GL_SPECULAR, chunk->getSpecular().getValuesRGBA());
    glMaterialfv(face, GL_EMISSION, chunk->getEmission().getValuesRGBA());
    if(withShininess)
        glMaterialf(face, GL_SHININESS, chunk->getShininess());

    if(chunk->getBackMaterial())
    {
        glMaterialfv(GL_BACK, GL_DIFFUSE, chunk->getBackDiffuse().getValuesRGBA());
        glMaterialfv(GL_BACK, GL_AMBIENT, chunk->getBackAmbient().getValuesRGBA());
        glMaterialfv(GL_BACK, GL_SPECULAR, chunk->getBackSpecular().getValuesRGBA());
        glMaterialfv(GL_BACK, GL_EMISSION, chunk->getBackEmission().getValuesRGBA());
        if(withShininess)
            glMaterialf(GL_BACK, GL_SHININESS, chunk->getBackShininess());
    }
}
} // namespace

MaterialChunk::MaterialChunk(void) : Inherited()
{
}

MaterialChunk::MaterialChunk(const MaterialChunk &source) : Inherited(source)
{
}

MaterialChunk::~MaterialChunk(void)
{
}

void MaterialChunk::initMethod(void)
{
}

const StateChunkClass *MaterialChunk::getClass(void) const
{
    return &_class;
}

void MaterialChunk::activate(DrawActionBase *, UInt32)
{
    GLenum face, mode;
    colorMaterialSetup(this, face, mode);
    applyColorMaterial(face, mode);

    glColor4fv(getDiffuse().getValuesRGBA());

    if(getLit())
    {
        applyMaterial(this, true);
        glEnable(GL_LIGHTING);
    }
    else
    {
        glDisable(GL_LIGHTING);
    }
}

void MaterialChunk::changeFrom(DrawActionBase *action, StateChunk *old_chunk, UInt32 index)
{
    // the geometry's colours may have changed the current colour since
    if(old_chunk == this)
    {
        glColor4fv(getDiffuse().getValuesRGBA());
        return;
    }

    MaterialChunk *old = dynamic_cast<MaterialChunk *>(old_chunk);
    if(old == NULL)
    {
        old_chunk->deactivate(action, index);
        activate(action, index);
        return;
    }

    GLenum face, mode, oldFace, oldMode;
    colorMaterialSetup(this, face, mode);
    colorMaterialSetup(old, oldFace, oldMode);
    if(face != oldFace || mode != oldMode)
        applyColorMaterial(face, mode);

    glColor4fv(getDiffuse().getValuesRGBA());

    if(getLit() != old->getLit())
    {
        if(getLit())
            glEnable(GL_LIGHTING);
        else
            glDisable(GL_LIGHTING);
    }

    if(getLit())
    {
        bool shininess =
            std::fabs(getShininess() - old->getShininess()) > 1e-4 || !old->getLit() ||
            (getBackMaterial() &&
             std::fabs(getBackShininess() - old->getBackShininess()) > 1e-4) ||
            getBackMaterial() != old->getBackMaterial();
        applyMaterial(this, shininess);
    }
}

void MaterialChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getLit())
        glDisable(GL_LIGHTING);

    if(getColorMaterial() != GL_NONE || (getBackMaterial() && getBackColorMaterial() != GL_NONE))
        glDisable(GL_COLOR_MATERIAL);
}

bool MaterialChunk::isTransparent(void) const
{
    return getDiffuse().alpha() < 1.f - 1e-6f;
}

Real32 MaterialChunk::switchCost(StateChunk *)
{
    return 0;
}

bool MaterialChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool MaterialChunk::operator==(const StateChunk &other) const
{
    const MaterialChunk *tother = dynamic_cast<const MaterialChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;

    return getAmbient().equals(tother->getAmbient(), 1e-6f) &&
           getDiffuse().equals(tother->getDiffuse(), 1e-6f) &&
           getSpecular().equals(tother->getSpecular(), 1e-6f) &&
           getEmission().equals(tother->getEmission(), 1e-6f) &&
           getShininess() == tother->getShininess() && getLit() == tother->getLit() &&
           getColorMaterial() == tother->getColorMaterial();
}

bool MaterialChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void MaterialChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MaterialChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MaterialChunk NI" << std::endl;
}

OSG_END_NAMESPACE
