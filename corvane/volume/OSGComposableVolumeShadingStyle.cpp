#include <OpenSG/OSGComposableVolumeShadingStyle.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/VolumeNodeHandler.h>

OSG_BEGIN_NAMESPACE

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle(void) : Inherited()
{
}

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source) : Inherited(source)
{
}

ComposableVolumeShadingStyle::~ComposableVolumeShadingStyle(void)
{
}

void ComposableVolumeShadingStyle::initMethod(void)
{
}

void ComposableVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ComposableVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ComposableVolumeShadingStyle NI" << std::endl;
}

void ComposableVolumeShadingStyle::paramShading(VolumeNodeHandler *handler)
{
    // any other type works as 3 does, and only says so
    if((_changedFields & (EnabledFieldMask | ShadingFuncTypeFieldMask)) &&
       getShadingFuncType() != 3)
        FWARNING(("Shading Style %d not impl. in ComposableVolumeShadingStyle\n",
                  getShadingFuncType()));
    if(handler == NULL || handler->getShadingfunction() == NULL)
    {
        _changedFields = 0;
        return;
    }

    SHLChunkPtr     shader = handler->getRaycastingShader();
    DVRShadingBase *dvr    = dynamic_cast<DVRShadingBase *>(handler->getShadingfunction());
    if(dvr != NULL)
    {
        dvr->_gradientOpacity = getEnabled();
        handler->initMaterial();
        dvr->kgc = getRetainedOpacity();
        dvr->kge = getOpacityFactor();
        dvr->kgs = getBoundaryOpacity();
        if(shader != NullFC)
        {
            beginEditCP(shader, SHLChunk::ParametersFieldMask);
            shader->setUniformParameter("kgc", Real32(dvr->kgc));
            endEditCP(shader, SHLChunk::ParametersFieldMask);
            beginEditCP(shader, SHLChunk::ParametersFieldMask);
            shader->setUniformParameter("kge", Real32(dvr->kge));
            endEditCP(shader, SHLChunk::ParametersFieldMask);
            beginEditCP(shader, SHLChunk::ParametersFieldMask);
            shader->setUniformParameter("kgs", Real32(dvr->kgs));
            endEditCP(shader, SHLChunk::ParametersFieldMask);
        }
    }
    _changedFields = 0;
}

OSG_END_NAMESPACE
