#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/VolumeNodeHandler.h>

OSG_BEGIN_NAMESPACE

BasicVolumeShadingStyle::BasicVolumeShadingStyle(void) : Inherited()
{
}

BasicVolumeShadingStyle::BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source) : Inherited(source)
{
}

BasicVolumeShadingStyle::~BasicVolumeShadingStyle(void)
{
}

void BasicVolumeShadingStyle::initMethod(void)
{
}

void BasicVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void BasicVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump BasicVolumeShadingStyle NI" << std::endl;
}

void BasicVolumeShadingStyle::paramShading(VolumeNodeHandler *handler)
{
    if(handler == NULL)
        return;

    ShadingFunctions *shading = NULL;
    if(!getEnabled())
    {
        shading = new DVRShading;
        setShadingFunction(shading);
        handler->setShadingfunction(shading);
        _changedFields = 0;
        return;
    }

    switch(getShadingFuncType())
    {
        case 0:
            shading = getLighting() ? static_cast<ShadingFunctions *>(new DVRShadingAndLighting)
                                    : new DVRShading;
            break;
        case 1:
            shading = new MIPShading;
            break;
        case 2:
            shading = new XRayShading;
            break;
        default:
            FWARNING(("Shading Style %d not impl. in BasicVolumeShadingStyle\n",
                      getShadingFuncType()));
            setShadingFunction(NULL);
            handler->setShadingfunction(NULL);
            _changedFields = 0;
            return;
    }
    setShadingFunction(shading);
    handler->setShadingfunction(shading);

    DVRShadingAndLighting *lit = dynamic_cast<DVRShadingAndLighting *>(shading);
    if(lit != NULL)
    {
        SHLChunkPtr shader = handler->getRaycastingShader();
        const Vec3f diffuse(getDiffuseColor().red(), getDiffuseColor().green(),
                            getDiffuseColor().blue());
        const Vec3f emissive(getEmissiveColor().red(), getEmissiveColor().green(),
                             getEmissiveColor().blue());
        const Vec3f specular(getSpecularColor().red(), getSpecularColor().green(),
                             getSpecularColor().blue());
        lit->diffuseColor  = diffuse;
        lit->emissiveColor = emissive;
        lit->specularColor = specular;
        lit->exponent      = 128.f * getShininess();
        if(shader != NullFC)
        {
            beginEditCP(shader, SHLChunk::ParametersFieldMask);
            shader->setUniformParameter("diffuseColor", diffuse);
            shader->setUniformParameter("emissiveColor", emissive);
            shader->setUniformParameter("specularColor", specular);
            shader->setUniformParameter("exponent", Real32(lit->exponent));
            endEditCP(shader, SHLChunk::ParametersFieldMask);
        }
    }
    _changedFields = 0;
}

OSG_END_NAMESPACE
